#!/usr/bin/env bash
# Destination menus as a person uses them: copying to a directory far down in a menu that is longer than the
# screen, by keys and by the mouse, a directory that hangs while its menu is open, and a thousand quick openings.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

has_item() { look_has "menu item \"$1\""; }
no_item() { ! has_item "$1"; }
no_jobs_window() { ! find_windows --all --onlyvisible --pid "$tav_pid" --name '^TAV: File Operations$'; }

# open_copy_to NAME: selects it and opens "Copy To" of the Edit menu, the hotlist's first directory active.
open_copy_to() {
    select_one "$1"
    keys alt+e
    wait_for "the menu is open" has_item "Copy To"
    keys c
    wait_for "Copy To is open" has_item "Other..."
    keys Down
}

desktop_start
desktop_bus
mkdir -p "$work"/{shown,hang,many} "$HOME/.ph/tav"
touch "$work/shown/one" "$work/shown/two"
(cd "$work/many" && for i in $(seq 1000 2999); do echo "d$i"; done | xargs mkdir)
mkdir "$work/many/R&D" "$work/many/R&D/below"
printf '%s\n' "$work/many" "$work/hang" >"$HOME/.ph/tav/hotlist.001"
typing_lasts

test_a_directory_far_down_by_keys() {
    tav_start "$work/shown"
    tav_ready "$work/shown"
    open_copy_to one
    keys Right
    wait_for "the first directories are there" has_item d1000/
    no_item d2999/ || fail "a row out of sight has an item"
    keys End
    wait_for "the last ones are there" has_item d2999/
    keys Return
    wait_for "it asks" look_has "Do you want to copy one to"
    look_has "$work/many/d2999" || fail "it asks about another directory"
    keys Return
    wait_for "it is copied" test -e "$work/many/d2999/one"
    wait_for "the job has ended" no_jobs_window
    tav_quit
}

test_a_name_with_a_sign_by_a_letter_and_the_mouse() {
    tav_start "$work/shown"
    tav_ready "$work/shown"
    open_copy_to two
    keys Right
    wait_for "the first directories are there" has_item "R&D/"
    keys r
    keys Right
    wait_for "its submenu is open" has_item below/
    click_on below/
    wait_for "it asks" look_has "Do you want to copy two to"
    keys Return
    wait_for "it is copied" test -e "$work/many/R&D/below/two"
    wait_for "the job has ended" no_jobs_window
    tav_quit
}

# The menu says "Scanning..." as long as it takes; everything else works.
test_a_directory_that_hangs_while_its_menu_is_open() {
    mkfifo "$work/answer"
    HANG_PATH=$work/hang HANG_UNTIL=$work/answer LD_PRELOAD=$(dirname "$TAV")/tests/hang.so \
        ASAN_OPTIONS=verify_asan_link_order=0 tav_start "$work/shown"
    tav_ready "$work/shown"
    open_copy_to one
    keys Down Right
    wait_for "it is being scanned" has_item "Scanning..."
    keys Left Up Right
    wait_for "the other one opens" has_item d1000/
    keys Escape Escape Escape
    wait_for "the menus are closed" no_item "Other..."
    tav_quit
    rm "$work/answer"
}

test_a_thousand_quick_openings() {
    local rounds=() i
    tav_start "$work/shown"
    tav_ready "$work/shown"
    select_one one
    for i in $(seq 1000); do
        rounds+=(Menu c Down Right Escape Escape Escape Escape)
        [ $((i % 100)) -ne 0 ] || {
            xdotool key --delay 1 "${rounds[@]}"
            rounds=()
        }
    done
    wait_for "no menu is left" no_item "Other..."
    tav_is_gone && fail "it has ended"
    open_copy_to two
    keys Right
    wait_for "the directories are there" has_item d1000/
    keys Escape Escape Escape
    tav_quit
}

test_a_directory_far_down_by_keys
test_a_name_with_a_sign_by_a_letter_and_the_mouse
test_a_directory_that_hangs_while_its_menu_is_open
test_a_thousand_quick_openings
