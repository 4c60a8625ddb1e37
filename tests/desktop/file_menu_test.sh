#!/usr/bin/env bash
# The File menu as a person uses it: every row by mouse, by key and by its letter, what is dimmed, and the dialog
# "Open With".
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/docs
mkdir -p "$dir/sub"
for name in a.c b.txt; do echo text >"$dir/$name"; done

# open_menu: the File menu, by its name in the menu bar.
menu_is_open() { look_has 'menu item "Exit	Alt-X"'; }
menu_is_closed() { ! menu_is_open; }
open_menu() {
    click_on File
    wait_for "the File menu is open" menu_is_open
}

# choose_new NAME: an item of its submenu "New", by mouse.
new_is_open() { look_has 'menu item "Window	Ctrl-N"'; }
choose_new() {
    open_menu
    click_on New
    wait_for "the submenu is open" new_is_open
    click_on "$1"
    wait_for "the File menu is closed" menu_is_closed
}

# by_letters LETTER...: an item of the File menu, by its mnemonic.
by_letters() {
    keys alt+f
    wait_for "the File menu is open" menu_is_open
    keys "$@"
    wait_for "the File menu is closed" menu_is_closed
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
    local letter wanted
    while read -r letter wanted; do
        by_letters "$letter"
        expect_run "$wanted" "the letter $letter"
    done <<LETTERS
o ped [a.c]
v ped [a.c]
e ped [a.c]
p lp [a.c]
t pterm
LETTERS
    keys v
    wait_for "v alone is typing" is_selected ""
    keys Escape
    select_one a.c
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
    wait_for "the main window has the keyboard again" tav_is_active
    choose "Open With...	Shift-Ret"
    wait_for "the dialog is there" window_named "Open With"
    wait_for "its field has the keyboard" look_has 'text "Command" [focused]'
    types "show"
    click_on "Open With" Open
    expect_run "show [b.txt]" "Open With by mouse"
    wait_for "the dialog is gone" no_window_named "Open With"
    wait_for "the main window has the keyboard again" tav_is_active
    keys shift+Return
    expect_window "Open With" "Shift-Enter"
    by_letters w
    wait_for "its letter opens the dialog" window_named "Open With"
    wait_for "its field has the keyboard" look_has 'text "Command" [focused]'
    types "show never"
    click_on "Open With" Cancel
    wait_for "Cancel closes it" no_window_named "Open With"
    wait_for "the main window has the keyboard again" tav_is_active
    [ ! -e "$work/ran" ] || fail "Cancel ran the command"
}

# expect_second DIRECTORY WHAT: a second window shows it; it is closed again.
expect_second() {
    local second
    wait_for "$2 opens a window" second_tav
    second=$(second_tav)
    pids+=("$second")
    wait_for "which shows the directory" tav_shows "$1" "$second"
    tav_close "$second"
    wait_for "the second is gone" no_second_tav
    wait_for "the first has the keyboard again" tav_is_active
}

# expect_window NAME WHAT: a dialog is there; Escape closes it.
expect_window() {
    wait_for "$2 opens a dialog" active_is "$1"
    keys Escape
    wait_for "it is closed" no_window_named "$1"
    wait_for "the main window has the keyboard again" tav_is_active
}

test_windows() {
    keys ctrl+n
    expect_second "$dir" "Ctrl-N"
    choose_new "Window	Ctrl-N"
    expect_second "$dir" "New Window"
    by_letters n w
    expect_second "$dir" "the letters of New Window"
    select_one sub
    keys ctrl+Return
    expect_second "$dir/sub" "Ctrl-Enter"
    choose "Open In Window	Ctrl-Ret"
    expect_second "$dir/sub" "Open In Window"
    by_letters d
    expect_second "$dir/sub" "the letter of Open In Window"
}

test_new_entries() {
    keys F3
    expect_window "Create New File" F3
    choose_new "File	F3"
    expect_window "Create New File" "New File"
    by_letters n i
    expect_window "Create New File" "the letters of New File"
    keys F4
    expect_window "Create New Folder" F4
    choose_new "Folder	F4"
    expect_window "Create New Folder" "New Folder"
    by_letters n f
    expect_window "Create New Folder" "the letters of New Folder"
}

test_refresh() {
    touch "$dir/later"
    keys F5
    wait_for "F5 shows what is new" look_has 'list item "later"'
    rm "$dir/later"
    choose "Refresh	F5"
    gone() { look_has 'list item "b.txt"' && ! look_has 'list item "later"'; }
    wait_for "Refresh shows what is gone" gone
    touch "$dir/later"
    by_letters r
    wait_for "the letter of Refresh shows what is new" look_has 'list item "later"'
    rm "$dir/later"
    keys F5
    wait_for "F5 shows what is gone" gone
}

test_inspect() {
    select_one a.c
    keys F9
    expect_window "File Information.*" F9
    choose "Inspect...	F9"
    expect_window "File Information.*" Inspect
    by_letters i
    expect_window "File Information.*" "the letter of Inspect"
}

test_exit() {
    choose "Exit	Alt-X"
    tav_status
    expect 0 "$tav_exit" "exit status"
    local way
    for way in alt+x "alt+f x"; do
        tav_start "$dir"
        tav_ready "$dir"
        # shellcheck disable=SC2086 # two keys
        keys $way
        tav_status
        expect 0 "$tav_exit" "exit status by $way"
    done
}

second_tav() { pgrep -x tav -P "$tav_pid"; }
no_second_tav() { ! second_tav; }

typing_lasts
test_files_by_key_and_by_mouse
test_dimmed_items
test_open_with
test_windows
test_new_entries
test_refresh
test_inspect
test_exit
