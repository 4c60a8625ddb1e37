#!/usr/bin/env bash
# The two dialogs of the associations in a real window, by mouse and by key, and what they write.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

file() { echo "$HOME/.ph/tav/associate.003"; }
header='# <pattern[|pattern[..]]> \t <open_command> \t <view_command> \t <edit command>'
has_row() { look_has "table cell \"$1\""; }
has_no_row() { ! has_row "$1"; }
message_is_gone() { ! look_has "Pattern cannot have TABs"; }
pattern_has_keyboard() { look | grep 'text "Pattern".*\[focused\]'; }
button_is_dimmed() { look_has "push button \"$1\" [disabled]"; }

open_list() {
    keys F11
    wait_for "the list is there" active_is Associate
    wait_for "it has the keyboard" look_has 'tree "List of File Type Associations" [focused]'
}
wait_for_entry() {
    wait_for "the entry is there" active_is "New Association Type"
    wait_for "its first field has the keyboard" pattern_has_keyboard
}

# The rows of the file, TABs as "|".
rows() { tail -n +2 "$(file)" | tr '\t' '|' | paste -sd ' '; }
written() { [ "$(head -n 1 "$(file)")" = "$header" ] && [ "$(rows)" = "$1" ]; }

desktop_start
desktop_bus
mkdir -p "$HOME/.ph/tav" "$work/docs"
printf '*.x\to\tv\te\n*.y\to2\n' >"$(file)"
tav_start "$work/docs"
tav_ready "$work/docs"

test_by_key() {
    open_list
    keys alt+a
    wait_for_entry
    types "*.z"
    keys Tab
    types "show @"
    keys Tab Tab
    types "ped"
    keys Return
    wait_for "the entry is closed" no_window_named "New Association Type"
    wait_for "the list has the keyboard" active_is Associate
    wait_for "the row is there" has_row "*.z"
    keys Down alt+e
    wait_for_entry
    wait_for "it shows the second row" look_has '"o2"'
    keys alt+v
    types "view"
    keys Return
    wait_for "the entry is closed" no_window_named "New Association Type"
    wait_for "the list has the keyboard" active_is Associate
    keys alt+r
    wait_for "the first row is gone" has_no_row "*.x"
    keys alt+d
    wait_for "the list is closed" no_window_named Associate
    wait_for "it is written" written "*.y|o2|view| *.z|show @||ped"
}

test_by_mouse() {
    open_list
    click_on Associate Add...
    wait_for_entry
    click_on "New Association Type" Done
    wait_for "an empty pattern is refused" look_has "Pattern cannot have TABs"
    keys Return
    wait_for "the message is gone" message_is_gone
    window_named "New Association Type" >/dev/null || fail "the entry went with it"
    click_on "New Association Type" Cancel
    wait_for "the entry is closed" no_window_named "New Association Type"
    wait_for "the list has the keyboard" active_is Associate
    click_on Associate "*.z"
    click_on Associate Edit...
    wait_for_entry
    wait_for "it shows the row that was clicked" look_has '"show @"'
    keys Escape
    wait_for "Escape closes the entry alone" no_window_named "New Association Type"
    wait_for "the list has the keyboard" active_is Associate
    window_named Associate >/dev/null || fail "the list went with it"
    click_on Associate Remove
    wait_for "the row is gone" has_no_row "*.z"
    click_on Associate Remove
    wait_for "Remove is dimmed" button_is_dimmed Remove
    wait_for "so is Edit" button_is_dimmed Edit...
    click_on Associate Cancel
    wait_for "the list is closed" no_window_named Associate
    written "*.y|o2|view| *.z|show @||ped" || fail "Cancel wrote something"
    open_list
    click_on Associate Remove
    wait_for "the row is gone" has_no_row "*.y"
    click_on Associate Done
    wait_for "the list is closed" no_window_named Associate
    wait_for "it is written" written "*.z|show @||ped"
}

# What cannot be read as text is shown as what it is, and kept.
test_odd_bytes() {
    printf '*.a\tx\r\n*.\xFF\ty\x01\t%s\tz\tlost\tlost\n' "$(printf 'v%.0s' {1..900})" >"$(file)"
    tav_start "$work/docs"
    tav_ready "$work/docs"
    open_list
    wait_for "a carriage return is seen" has_row "x␍"
    wait_for "no text is seen as bytes" has_row '*.\xFF'
    keys alt+d
    wait_for "the list is closed" no_window_named Associate
    expect "2" "$(tail -n +2 "$(file)" | wc -l)" "rows written"
    tail -n +2 "$(file)" | head -n 1 | cmp - <(printf '*.a\tx\r\t\t\n') || fail "the first row has changed"
    tail -n 1 "$(file)" | cut -f 1,2,4 | cmp - <(printf '*.\xFF\ty\x01\tz\n') || fail "the second row has changed"
    tav_quit
}

# A row without a TAB ends the program with a message, comments uncounted.
test_malformed_file() {
    local content
    for content in '# comment\n*.x\ta\nnothing\n' '# comment\n*.x\ta\n\n' '*.x\ta\n\0\tb\n'; do
        # shellcheck disable=SC2059 # the escapes are meant
        printf "$content" >"$(file)"
        tav_start "$work/docs"
        wait_for "a message is there" active_is Error
        wait_for "it names the row" look_has "Invalid association at line 2"
        keys Return
        tav_status
        expect 1 "$tav_exit" "exit status"
    done
}

test_by_key
test_by_mouse
tav_quit
test_odd_bytes
test_malformed_file
