#!/usr/bin/env bash
# Opening, viewing, editing and printing as a person does it: the File menu by mouse and by key, "Open With",
# and the way from Enter on a file to the user's editor in a terminal where nothing else is installed.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/docs
bin=$work/bin
mkdir -p "$dir/sub" "$bin"
for name in a.c b.txt; do echo text >"$dir/$name"; done

# stand_in NAME...: programs that write their name and arguments down, each argument in brackets.
stand_in() {
    local name
    for name in "$@"; do
        cat >"$bin/$name" <<END
#!/bin/sh
{ printf '%s' "$name"; for a; do printf ' [%s]' "\$a"; done; } >"$work/draft.\$\$"
mv "$work/draft.\$\$" "$work/ran"
END
        chmod +x "$bin/$name"
    done
}

ran_is() { [ "$(cat "$work/ran")" = "$1" ]; }

# expect_run TEXT WHAT: a stand-in was started that way.
expect_run() {
    wait_for "$2 starts <$1>" ran_is "$1"
    rm "$work/ran"
}

# open_menu: the File menu, by its name in the menu bar.
menu_is_open() { look_has 'menu item "Exit	Alt-X"'; }
menu_is_closed() { ! menu_is_open; }
open_menu() {
    click_on File
    wait_for "the File menu is open" menu_is_open
}

# close_menu: by Escape, which may leave the menu bar with the keyboard.
list_has_keyboard() {
    look_has 'list "File list" [focused]' && return
    keys Escape
    return 1
}
close_menu() {
    keys Escape
    wait_for "the File menu is closed" menu_is_closed
    wait_for "the list has the keyboard" list_has_keyboard
}

# choose NAME: an item of the File menu, by mouse.
choose() {
    open_menu
    click_on "$1"
    wait_for "the File menu is closed" menu_is_closed
}

selected() { look | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
is_selected() { [ "$(selected)" = "$1" ]; }
status_is() { look_has "\"$1\""; }

# select_one NAME: the cursor and the selection are there and nowhere else.
select_one() {
    types "$1"
    wait_for "$1 is selected" is_selected "$1"
    keys Escape
}

window_named() { xdotool search --onlyvisible --name "^$1\$"; }
no_window_named() { ! window_named "$1"; }

export PATH=$bin:/usr/bin:/bin
stand_in ped lp pterm show
unset EDITOR VISUAL TERMINAL
desktop_start
desktop_bus

test_files_by_key_and_by_mouse() {
    tav_start "$dir"
    tav_ready "$dir"
    select_one a.c
    keys Return
    expect_run "ped [a.c]" "Enter"
    keys ctrl+e
    expect_run "ped [a.c]" "Ctrl-E"
    keys ctrl+p
    expect_run "lp [a.c]" "Ctrl-P"
    wait_for "what was printed is said" status_is "'a.c' printed"
    keys ctrl+t
    expect_run "pterm" "Ctrl-T"
    choose "Open	Ret"
    expect_run "ped [a.c]" "Open"
    choose "View	V"
    expect_run "ped [a.c]" "View"
    choose "Edit	Ctrl-E"
    expect_run "ped [a.c]" "Edit"
    choose "Print	Ctrl-P"
    expect_run "lp [a.c]" "Print"
    choose "Open Terminal	Ctrl-T"
    expect_run "pterm" "Open Terminal"
    keys alt+f v
    expect_run "ped [a.c]" "the letter of View"
    keys shift+Down
    wait_for "two files are selected" is_selected "a.c b.txt"
    keys ctrl+p
    expect_run "lp [a.c] [b.txt]" "Ctrl-P on two files"
    wait_for "how many were printed is said" status_is "2 items printed"
}

# is_dimmed NAME...: exactly these items of the open File menu.
is_dimmed() {
    local got
    got=$(look | sed -n 's/^ *menu item "\([^"	]*\)[^"]*" .*\[disabled\].*/\1/p' | paste -sd ,)
    [ "$got" = "$1" ]
}

test_dimmed_items() {
    keys ctrl+u
    wait_for "nothing is selected" is_selected ""
    open_menu
    wait_for "without a selection" is_dimmed "Open,Open In Window,View,Edit,Open With...,Print,Print Directory,Inspect..."
    close_menu
    select_one sub
    open_menu
    wait_for "with a directory" is_dimmed "View,Edit,Open With...,Print,Print Directory"
    close_menu
    select_one a.c
    open_menu
    wait_for "with a file" is_dimmed "Open In Window,Print Directory"
    close_menu
}

test_open_with() {
    select_one b.txt
    keys shift+Return
    wait_for "the dialog is there" window_named "Open With"
    wait_for "its field has the keyboard" look_has 'text "Command" [focused]'
    types "show -x @"
    keys Return
    expect_run "show [-x] [b.txt]" "Open With by key"
    wait_for "the dialog is gone" no_window_named "Open With"
    choose "Open With...	Shift-Ret"
    wait_for "the dialog is there" window_named "Open With"
    wait_for "its field has the keyboard" look_has 'text "Command" [focused]'
    types "show"
    click_on "Open With" Open
    expect_run "show [b.txt]" "Open With by mouse"
    wait_for "the dialog is gone" no_window_named "Open With"
    keys shift+Return
    wait_for "the dialog is there" window_named "Open With"
    keys Escape
    wait_for "Escape closes it" no_window_named "Open With"
}

test_the_other_rows() {
    local second
    select_one sub
    keys ctrl+Return
    wait_for "Ctrl-Enter opens a window" second_tav
    second=$(second_tav)
    pids+=("$second")
    wait_for "which shows the directory" tav_shows "$dir/sub" "$second"
    tav_close "$second"
    wait_for "the second is gone" no_second_tav
    keys ctrl+n
    wait_for "Ctrl-N opens a window" second_tav
    second=$(second_tav)
    pids+=("$second")
    wait_for "on the same directory" tav_shows "$dir" "$second"
    tav_close "$second"
    wait_for "that is gone, too" no_second_tav
    wait_for "the first has the keyboard again" tav_is_active
    touch "$dir/later"
    keys F5
    wait_for "F5 shows what is new" look_has 'list item "later"'
    rm "$dir/later"
    choose "Refresh	F5"
    gone() { look_has 'list item "b.txt"' && ! look_has 'list item "later"'; }
    wait_for "Refresh shows what is gone" gone
    keys F3
    wait_for "F3 asks for a file" window_named "Create New File"
    keys Escape
    wait_for "that is closed" no_window_named "Create New File"
    keys F4
    wait_for "F4 asks for a folder" window_named "Create New Folder"
    keys Escape
    wait_for "that is closed" no_window_named "Create New Folder"
    select_one a.c
    keys F9
    wait_for "F9 shows the properties" look_has 'dialog "File Information'
    keys Escape
    wait_for "they are closed" no_window_named "File Information.*"
    choose "Exit	Alt-X"
    tav_status
    expect 0 "$tav_exit" "exit status"
}

second_tav() { pgrep -x tav -P "$tav_pid"; }
no_second_tav() { ! second_tav; }

# Nothing is there but a terminal and the editor that the user has named.
test_editor_in_a_terminal() {
    rm "$bin/ped"
    cat >"$bin/own_editor" <<END
#!/bin/sh
{ tty; pwd; printf '%s\n' "\$@"; } >"$work/edited.draft"
mv "$work/edited.draft" "$work/edited"
read -r line
echo "\$line" >"$work/typed"
END
    chmod +x "$bin/own_editor"
    stand_in recording_terminal
    EDITOR=own_editor TERMINAL=recording_terminal tav_start "$dir"
    tav_ready "$dir"
    select_one a.c
    keys Return
    expect_run "recording_terminal [-e] [own_editor] [a.c]" "Enter on a.c"
    tav_quit

    EDITOR=own_editor TERMINAL=xterm tav_start "$dir"
    tav_ready "$dir"
    echo text >"$dir/a b'\$x.c"
    keys F5
    for name in a.c "a b'\$x.c"; do
        rm -f "$work/edited" "$work/typed"
        select_one "$name"
        keys Return
        wait_for "the editor runs on $name" test -e "$work/edited"
        grep -q '^/dev/pts/' "$work/edited" || fail "the editor has no terminal: $(cat "$work/edited")"
        expect "$dir,$name" "$(tail -n 2 "$work/edited" | paste -sd ,)" "where and what it edits"
        wait_for "its window has the keyboard" editor_is_active
        types "hello"
        keys Return
        wait_for "it reads what is typed" grep -qx hello "$work/typed"
        wait_for "tav has the keyboard again" tav_is_active
    done
    tav_quit
}

editor_is_active() { xdotool getactivewindow getwindowname | grep -q own_editor; }

# A program that reads its terminal, typed as a command, is started again where it can.
test_reader_gets_a_terminal() {
    rm -f "$bin/pterm" "$work/edited" "$work/typed"
    printf '#!/bin/sh\nexec script -qec "%s %s" /dev/null\n' "$TAV" "$dir" >"$bin/in_terminal"
    chmod +x "$bin/in_terminal"
    TERMINAL=xterm setsid xterm -e "$bin/in_terminal" &
    pids+=($!)
    wait_for "tav runs in a terminal" tav_in_terminal
    tav_pid=$(tav_in_terminal)
    wait_for "it shows the directory" tav_shows "$dir"
    wmctrl -i -a "$(tav_window)"
    wait_for "tav has the keyboard" tav_is_active
    types ":own_editor x"
    keys Return
    wait_for "the editor has got a terminal" test -e "$work/edited"
    wait_for "its window has the keyboard" editor_is_active
    types "again"
    keys Return
    wait_for "it reads what is typed" grep -qx again "$work/typed"
    wait_for "tav has the keyboard again" tav_is_active
    keys alt+x
    wait_for "tav ends" tav_is_gone
}

tav_in_terminal() { pgrep -f "^$TAV $dir\$"; }

test_files_by_key_and_by_mouse
test_dimmed_items
test_open_with
test_the_other_rows
test_editor_in_a_terminal
test_reader_gets_a_terminal
