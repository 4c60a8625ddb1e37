#!/usr/bin/env bash
# Every dialog on a real desktop: it opens by its key, lies centred over the main window, which is blocked and
# says so, and Escape closes it. A font that is chosen arrives in the list and is there after a restart.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

docs=$work/docs
mkdir -p "$docs/sub"
for name in a.c b.txt; do echo text >"$docs/$name"; done

selected() { look | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
is_selected() { [ "$(selected)" = "$1" ]; }
list_has_keyboard() { look_has 'list "File list" [focused]'; }
active_is() { [ "$(xdotool getactivewindow getwindowname)" = "$1" ]; }
dialog_is_up() { active_is "$1"; }

# select_one NAME: the cursor and the selection are there and nowhere else.
select_one() {
    types "$1"
    wait_for "$1 is selected" is_selected "$1"
    keys Escape
}

# window_middle ID: of its inside, as "X Y".
window_middle() {
    eval "$(xdotool getwindowgeometry --shell "$1")"
    echo $((X + WIDTH / 2)) $((Y + HEIGHT / 2))
}

# is_centred ID: over the main window, to the pixel that halving costs.
is_centred() {
    local dialog main
    read -ra dialog <<<"$(window_middle "$1")"
    read -ra main <<<"$(window_middle "$base")"
    near "${dialog[0]}" "${main[0]}" && near "${dialog[1]}" "${main[1]}"
}

# beside_dialog NAME: the mouse goes to the right end of that row, which no dialog covers.
beside_dialog() {
    local row
    read -ra row <<<"$(place_of "$1")"
    eval "$(xdotool getwindowgeometry --shell "$base")"
    xdotool mousemove $((X + WIDTH - 15)) "${row[1]}"
}
pointer() {
    beside_dialog a.c
    /usr/bin/python3 "$desktop_dir/pointer.py"
}
pointer_is() { [ "$(pointer)" = "$1" ]; }
pointer_is_not() { [ "$(pointer)" != "$1" ]; }

# takes_nothing DIALOG WHAT: keys and clicks that the main window gets while it is blocked change nothing.
takes_nothing() {
    local before
    before=$(selected)
    wait_for "the pointer says that $2 is to be answered first" pointer_is_not "$arrow"
    wmctrl -i -a "$base"
    wait_for "the main window is in front" tav_base_is_active
    keys Home space Down space F3 ctrl+a
    beside_dialog sub
    xdotool click 1
    wmctrl -i -a "$1"
    wait_for "$2 is in front again" dialog_is_up "$2"
    expect "$before" "$(selected)" "what is selected while $2 is up"
    no_window_named "Create New File" || fail "a key got through to the menu below $2"
}
tav_base_is_active() { [ "$(xdotool getactivewindow)" = "$((base))" ]; }

# try_dialog TITLE OPEN...: opens it by that command, looks at it and leaves it.
try_dialog() {
    local dialog
    "${@:2}"
    wait_for "$1 is up" dialog_is_up "$1"
    dialog=$(xdotool getactivewindow)
    wait_for "$1 is centred" is_centred "$dialog"
    case $1 in
    "Quick Reference" | "Create New File") ;; # the one blocks nothing; the other is what a key would open
    *) takes_nothing "$dialog" "$1" ;;
    esac
    keys Escape
    wait_for "Escape closes $1" no_window_named "$1"
    wait_for "the list has the keyboard after $1" list_has_keyboard
    wait_for "the pointer is an arrow again" pointer_is "$arrow"
}

# by_menu KEY ITEM KEY...: opens a menu, waits for an item of it and goes on.
by_menu() {
    keys "$1"
    wait_for "the menu with $2 is open" look_has "\"$2\""
    keys "${@:3}"
}

test_every_dialog() {
    tav_start "$docs"
    tav_ready "$docs"
    base=$(tav_window)
    xdotool windowsize --sync "$base" 800 620
    arrow=$(pointer)
    select_one a.c
    try_dialog "File Information" keys F9
    keys ctrl+a
    try_dialog "File Information" keys F9
    try_dialog "Select Pattern" keys ctrl+s
    try_dialog "Create New File" keys F3
    try_dialog "Create New Folder" keys F4
    try_dialog "Preferences" keys F10
    try_dialog "Quick Reference" keys F1
    try_dialog "About tav" by_menu alt+p About a
    keys ctrl+a
    try_dialog "Unselect Pattern" by_menu alt+e Unselect u p
    tav_quit
}

# After a message the dialog has the keyboard again and goes on.
test_message_over_a_dialog() {
    tav_start "$docs"
    tav_ready "$docs"
    keys F3
    wait_for "the dialog is up" dialog_is_up "Create New File"
    types a.c
    keys Return
    wait_for "the message is up" dialog_is_up "Error"
    keys Return
    wait_for "the dialog is back" dialog_is_up "Create New File"
    keys ctrl+a
    types fresh
    keys Return
    wait_for "the file is there" test -f "$docs/fresh"
    wait_for "it is selected" is_selected fresh
    tav_quit
}

# Pixels from row to row.
row_height() {
    local one two
    read -ra one <<<"$(place_of a.c)"
    read -ra two <<<"$(place_of b.txt)"
    echo $((two[1] - one[1]))
}
rows_are_higher() { [ "$(row_height)" -gt "$1" ]; }

test_font_survives_a_restart() {
    local before
    tav_start "$docs"
    tav_ready "$docs"
    before=$(row_height)
    keys F10
    wait_for "the preferences are up" dialog_is_up "Preferences"
    keys Tab Tab space
    wait_for "the chooser is up" dialog_is_up "Select File List Font"
    keys alt+s ctrl+a
    types 31
    keys Return
    wait_for "the preferences are back" dialog_is_up "Preferences"
    wait_for "the choice is shown" look_has ' 31"'
    expect "$before" "$(row_height)" "height of a row before Done"
    keys alt+d
    wait_for "the preferences are closed" no_window_named Preferences
    wait_for "the rows are higher" rows_are_higher $((before + 10))
    before=$(row_height)
    tav_quit
    tav_start "$docs"
    tav_ready "$docs"
    expect "$before" "$(row_height)" "height of a row after the restart"
    keys F10
    wait_for "the choice is still shown" look_has ' 31"'
    keys Escape
    tav_quit
}

desktop_start
desktop_bus
test_every_dialog
test_message_over_a_dialog
test_font_survives_a_restart
