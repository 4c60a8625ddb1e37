#!/usr/bin/env bash
# The ways through the tree in a real window: toolbar buttons, the path box, the filter, the mouse's side buttons,
# the Hotlist's keys, and a toolbar that is hidden and stays so.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/shown
mkdir -p "$dir/deep/er"
for name in a.txt b.c; do echo text >"$dir/$name"; done

has_row() { look_has "table cell \"$1\""; }
has_no_row() { ! has_row "$1"; }
lists() { look_has "list item \"$1\""; }
lists_not() { ! lists "$1"; }
is_dimmed() { look_has "push button \"$1\" [disabled]"; }
is_not_dimmed() { ! is_dimmed "$1"; }
has_hotlist() { look_has 'tree "Hotlist"'; }
has_no_hotlist() { ! has_hotlist; }
path_is() { look_has "text \"Path\" \"$1\""; }

# press BUTTON DIRECTORY: which leads there.
press() {
    click_on "$1"
    wait_for "$1 leads to $2" tav_shows "$2"
}

# fill BOX TEXT: by mouse and keys, as the whole text of it.
fill() {
    click_on "$1"
    wait_for "$1 has the keyboard" box_has_keyboard "$1"
    keys ctrl+a
    types "$2"
}
box_has_keyboard() { look | grep "text \"$1\".*\[focused\]"; }

test_navigation() {
    press "Up One Level" "$work"
    press Back "$dir"
    press Forward "$work"
    xdotool click 8
    wait_for "the mouse's Back leads back" tav_shows "$dir"
    xdotool click 9
    wait_for "its Forward leads on" tav_shows "$work"
    wait_for "where it ends" is_dimmed Forward
    press Home "$HOME"
    wait_for "which is home" is_dimmed Home
    keys alt+Left
    wait_for "the key leads back" tav_shows "$work"
    keys alt+Right
    wait_for "and on" tav_shows "$HOME"
    keys alt+Left alt+Left
    wait_for "twice leads two back" tav_shows "$dir"
    keys F6
    wait_for "F6 leads home" tav_shows "$HOME"
    keys alt+Left
    wait_for "and back" tav_shows "$dir"
    touch "$dir/later"
    click_on Refresh
    wait_for "Refresh shows what is new" lists later
    rm "$dir/later"
    keys F5
    wait_for "and F5 what is gone" lists_not later
}

test_other_buttons() {
    click_on Terminal
    expect_run "pterm" "Terminal"
    click_on "New Folder"
    wait_for "New Folder asks for a name" active_is "Create New Folder"
    keys Escape
    wait_for "it is closed" no_window_named "Create New Folder"
    wait_for "the main window has the keyboard again" tav_is_active
    wait_for "nothing to tell about" is_dimmed Properties
    select_one a.txt
    wait_for "something to tell about" is_not_dimmed Properties
    click_on Properties
    wait_for "Properties opens" active_is "File Information.*"
    keys Escape
    wait_for "it is closed" no_window_named "File Information.*"
    wait_for "the main window has the keyboard again" tav_is_active
}

test_hotlist() {
    click_on "Add Current Directory"
    wait_for "the directory has a row" has_row "$dir"
    wait_for "and is not added twice" is_dimmed "Add Current Directory"
    keys ctrl+r
    wait_for "Ctrl-R takes it out" has_no_row "$dir"
    keys ctrl+d
    wait_for "Ctrl-D puts it in" has_row "$dir"
    click_on "Show Hotlist"
    wait_for "the pane is hidden" has_no_hotlist
    click_on "Show Hotlist"
    wait_for "and shown" has_hotlist
}

test_path_box() {
    fill Path "$dir/deep"
    keys Return
    wait_for "a path is gone to" tav_shows "$dir/deep"
    keys alt+Left
    wait_for "and left" tav_shows "$dir"
    fill Path "$dir/d"
    wait_for "what is remembered completes it" path_is "$dir/deep"
    keys Return
    wait_for "and is gone to" tav_shows "$dir/deep"
    fill Path er
    keys Return
    wait_for "a relative path begins here" tav_shows "$dir/deep/er"
    fill Path '~'
    keys Return
    wait_for "a tilde is home" tav_shows "$HOME"
    fill Path nowhere
    keys Return
    wait_for "a path that is not there is told" look_has "Directory '$HOME/nowhere', not found"
    wait_for "in a box" active_is Error
    keys Return
    wait_for "which is gone" no_window_named Error
    wait_for "the text stays" path_is nowhere
    wait_for "and the keyboard" box_has_keyboard Path
    keys Escape
    wait_for "Escape shows the directory again" path_is "$HOME"
    fill Path "$dir"
    wait_for "the last path that begins so completes it" path_is "$dir/deep/er"
    keys Delete Return
    wait_for "but need not be taken" tav_shows "$dir"
}

test_filter() {
    fill Filter "*.txt"
    keys Return
    wait_for "the filter leaves out" lists_not b.c
    lists a.txt || fail "the filter takes"
    fill Filter "*"
    keys Return
    wait_for "everything is there again" lists b.c
}

test_hidden_bar() {
    local place before
    place=$(place_of "New Folder")
    before=$(windows)
    # shellcheck disable=SC2086 # two numbers
    xdotool mousemove $place click 3
    wait_for "the menu of the bars is there" has_more_windows_than "$before"
    keys Down Down Down Return
    wait_for "the bar is gone" bar_is_gone
    grep -q '^misc_tb=0' "$HOME/.ph/tav/tav.conf" || fail "it is not remembered: $(cat "$HOME/.ph/tav/tav.conf")"
    tav_quit
    tav_start "$dir"
    tav_ready "$dir"
    bar_is_gone || fail "the bar is back after a restart"
    has_row "$dir" || fail "the hotlist has lost its row"
    expect "$dir,$HOME,$dir/deep/er,$dir/deep" "$(paste -sd , "$HOME/.ph/tav/goto.001")" "paths that are remembered"
    expect "*,*.txt" "$(paste -sd , "$HOME/.ph/tav/fspec.001")" "filters that are remembered"
}
windows() { find_windows --onlyvisible --pid "$tav_pid" | wc -l; }
has_more_windows_than() { [ "$(windows)" -gt "$1" ]; }
bar_is_gone() { ! look_has 'push button "New Folder"'; }

stand_in pterm
desktop_start
desktop_bus
typing_lasts
tav_start "$dir"
tav_ready "$dir"
test_navigation
test_other_buttons
test_hotlist
test_path_box
test_filter
test_hidden_bar
tav_quit
