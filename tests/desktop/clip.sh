# What the tests of the clipboard and of drags share: several tavs, their rows, and what the clipboard holds.
# Sourced after lib.sh.
# shellcheck shell=bash disable=SC2154 # set by lib.sh

# tav_open NAME DIRECTORY: starts a tav on the directory; its process id is in the variable NAME.
tav_open() {
    tav_start "$2"
    printf -v "$1" %s "$tav_pid"
    tav_ready "$2"
}

# tav_focus PID: its window gets the keyboard; what lib.sh calls the last tav is this one.
tav_focus() {
    tav_pid=$1
    wait_for "no job is running" no_job_runs
    wait_for "the window comes to the front and has the keyboard" tav_raise "$1"
}

# The main window alone: a job's own window may stand beside it.
main_window() { find_windows --all --onlyvisible --pid "$1" --name ' - TAV$' | tail -n 1 | grep .; }
main_is_active() { [ "$(xdotool getactivewindow)" = "$(main_window "$1")" ]; }
tav_raise() {
    local window
    window=$(main_window "$1") && wmctrl -i -a "$window" && main_is_active "$1"
}

# The window of jobs is gone: as it closes the keyboard goes back to the window that had it before.
no_job_runs() { ! find_windows --onlyvisible --name '^TAV: File Operations$'; }

# tav_refresh PID: as the end of an operation anywhere does it.
tav_refresh() { kill -WINCH "$1"; }

row() { look "$1" | grep -F -- "list item \"$2\""; }
row_is_there() { row "$1" "$2"; }
row_is_gone() { look_has 'list item ".."' && ! row "$1" "$2"; }
row_is_cut() { row "$1" "$2" | grep -F '(cut'; }
row_is_plain() { row "$1" "$2" | grep -vF '(cut' | grep .; }

# selected_in PID: the names of the selected rows, joined by blanks.
selected_in() { look "$1" | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
selected_are() { [ "$(selected_in "$1")" = "$2" ]; }

# select_rows PID NAME...: by clicks, with Ctrl from the second on.
select_rows() {
    local pid=$1 name
    shift
    tav_focus "$pid"
    click_row "$pid" "$1"
    for name in "${@:2}"; do
        xdotool keydown ctrl
        click_row "$pid" "$name"
        xdotool keyup ctrl
    done
    wait_for "selected are $*" selected_are "$pid" "$*"
}
click_row() {
    local place
    read -ra place <<<"$(row_place "$1" "$2")"
    xdotool mousemove "${place[@]}" click 1
}
# row_place PID NAME: a point of the row's name, as "X Y".
row_place() {
    wait_for "the row $2 is found" row_place_once "$@"
    cat "$work/place"
}
row_place_once() {
    /usr/bin/python3 "$desktop_dir/look.py" "$1" --left "$2" >"$work/place" && [ -s "$work/place" ]
}

# form MIME: what the clipboard has in that form.
form() { timeout 20 xclip -o -selection clipboard -t "$1" 2>/dev/null; }
form_is() { [ "$(form "$1" | od -c)" = "$(printf '%b' "$2" | od -c)" ]; }
has_form() { xclip -o -selection clipboard -t TARGETS 2>/dev/null | grep -Fx -- "$1"; }
clipboard_is_empty() { ! has_form text/uri-list && ! has_form text/plain; }

# put_form MIME TEXT (with backslash escapes): as a program does that knows this form alone.
put_form() {
    printf '%b' "$2" >"$work/form"
    own "$1=$work/form"
}

# own FORM=FILE...: as a program does that knows several forms, see clip_owner.cpp.
own() {
    rm -f "$work/owner" # what the last one said
    "$(dirname "$TAV")/tests/clip_owner" "$@" >"$work/owner" &
    owner_pid=$!
    pids+=("$owner_pid")
    wait_for "the owner owns the clipboard" grep -q ready "$work/owner"
}
owner_is_asked() { grep -Fqx "asked for $1" "$work/owner"; }
owner_has_lost() { ! kill -0 "$owner_pid" 2>/dev/null; }

# paste_into PID: presses the key in its window.
paste_into() {
    tav_focus "$1"
    keys ctrl+v
}

# keys_are_done PID: what was typed into it before has been dealt with: the keyboard moves its cursor.
keys_are_done() {
    keys Home Down
    wait_for "the cursor goes to the first entry" focused_not "$1" ..
    keys Home
    wait_for "the cursor goes back" focused_is "$1" ..
}
focused_in() { look "$1" | sed -n 's/^ *list item "\([^"]*\)".*\[focused\].*/\1/p'; }
focused_is() { [ "$(focused_in "$1")" = "$2" ]; }
focused_not() { ! focused_is "$1" "$2" && [ -n "$(focused_in "$1")" ]; }
holds() { [ "$(cat -- "$1" 2>/dev/null)" = "$2" ]; }

# tav_place PID X Y WIDTH HEIGHT: its window goes there.
tav_place() {
    local window
    wait_for "the window is there" main_window "$1"
    window=$(main_window "$1")
    wmctrl -i -r "$window" -e "0,$2,$3,$4,$5"
}

# The pointer's image, so that one can be told from another; waiting for one.
pointer() { /usr/bin/python3 "$desktop_dir/pointer.py" "$@"; }

# drag_begin PID NAME: presses the selected row and takes it out of the list, up to the toolbar's buttons, where
# nothing may be dropped. Sets dragging and, the first time, pointer_none.
drag_begin() {
    local from top before
    tav_focus "$1"
    read -ra from <<<"$(row_place "$1" "$2")"
    read -ra top <<<"$(row_place "$1" ..)"
    xdotool mousemove "${from[@]}"
    before=$(pointer)
    xdotool mousedown 1 mousemove "${from[0]}" $((from[1] - 4))
    xdotool mousemove "${top[0]}" $((top[1] - 90)) mousemove "${top[0]}" $((top[1] - 93))
    dragging=$1
    pointer_none=$(pointer --not "$before") || fail "the pointer shows no drag"
}

# drag_over SHOWN X Y: goes on to that point, where the pointer shows it: move or copy (see drag_learn). A drag
# begins only as the mouse moves on, and some programs decide only then.
drag_over() {
    wait_for "the pointer shows a $1" drag_shows "pointer_$1" "$2" "$3"
    xdotool mousemove "$2" "$3"
}
drag_shows() {
    drag_step=$((7 - ${drag_step:-3}))
    xdotool mousemove "$2" $(($3 + drag_step))
    WAIT_SECONDS=0.5 pointer "${!1}"
}

# drag_learn X Y: what the pointer of the drag shows there without and with Ctrl, which is pressed and let go
# without moving. Sets pointer_move and pointer_copy.
# shellcheck disable=SC2034 # used by name
drag_learn() {
    xdotool mousemove "$1" $(($2 + 3)) mousemove "$1" "$2"
    pointer_move=$(pointer --not "$pointer_none") || fail "nothing may be dropped there"
    xdotool keydown ctrl
    pointer_copy=$(pointer --not "$pointer_none" "$pointer_move") || fail "the pointer shows no copy"
    xdotool keyup ctrl
    pointer "$pointer_move" >/dev/null || fail "the pointer shows no move again"
}

# drag_over_nothing PID X Y: to a point of that window where the drag is refused. Both programs have taken
# notice on return.
drag_over_nothing() {
    local step
    for step in 3 0; do
        xdotool mousemove "$2" $(($3 + step))
        look "$dragging" >"$work/noticed"
        look "$1" >"$work/noticed"
    done
    pointer "$pointer_none" >/dev/null || fail "the pointer shows that it may be dropped"
}

# drag_end: drops it there.
drag_end() { xdotool mouseup 1; }

# drag_rows FROM NAME TO ROW: moves by the mouse from the row of one list to the row of another.
drag_rows() {
    local place
    read -ra place <<<"$(row_place "$3" "$4")"
    drag_begin "$1" "$2"
    drag_over move "${place[@]}"
    drag_end
}

# A point of the list where no row is, nor six more.
below_rows() {
    local place
    read -ra place <<<"$(row_place "$1" "$2")"
    echo "${place[0]} $((place[1] + 150))"
}
