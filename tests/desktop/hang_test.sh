#!/usr/bin/env bash
# A directory of the hotlist whose disk does not answer: the program starts, shows its row, shows and expands
# the others, goes on after a click on it, shows it as soon as it answers, and ends meanwhile when it is told to.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

# tav_start_hanging: with a disk that hangs until it is told to answer.
tav_start_hanging() {
    mkfifo "$work/answer"
    HANG_PATH=$work/hang HANG_UNTIL=$work/answer LD_PRELOAD=$(dirname "$TAV")/tests/hang.so \
        ASAN_OPTIONS=verify_asan_link_order=0 tav_start "$@"
}
# Whoever waits goes on, and so does who begins to wait meanwhile: the other end stays open.
answer() {
    exec 9<>"$work/answer"
    rm "$work/answer"
}

has_row() { look_has "table cell \"$1\""; }
click_row() {
    wait_for "the row of $1 is there" has_row "$work/$1"
    click_on "$work/$1"
}

desktop_start
desktop_bus
mkdir -p "$work"/{hang,quick/inner,shown} "$HOME/.ph/tav"
printf '%s\n' "$work/hang" "$work/quick" >"$HOME/.ph/tav/hotlist.001"

test_everything_else_goes_on() {
    tav_start_hanging "$work/shown"
    tav_ready "$work/shown"
    wait_for "the hanging one has a row" has_row "$work/hang"
    click_row quick
    wait_for "another one is shown" tav_shows "$work/quick"
    keys Right
    wait_for "and expanded" has_row inner
    click_row hang
    wait_for "the hanging one is waited for" status_is "Waiting for '$work/hang'"
    keys Down
    keys Right
    keys alt+Left
    wait_for "and the way back leads back" tav_shows "$work/shown"
    answer
    wait_for "it answers" has_row "$work/hang"
    tav_shows "$work/shown" || fail "what answers too late is shown"
    tav_quit
}

# The Hotlist menu opens and leads to the other one.
has_entry() { look_has "menu item \"$work/$1"; }
test_the_hotlist_menu() {
    tav_start_hanging "$work/shown"
    tav_ready "$work/shown"
    keys alt+h
    wait_for "the menu has the hanging one" has_entry hang/
    wait_for "and the other one" has_entry quick/
    keys Up ctrl+Return
    wait_for "which leads there" tav_shows "$work/quick"
    answer
    tav_quit
}

test_it_is_shown_when_it_answers() {
    tav_start_hanging "$work/shown"
    tav_ready "$work/shown"
    click_row hang
    wait_for "it is waited for" status_is "Waiting for '$work/hang'"
    answer
    wait_for "it is shown" tav_shows "$work/hang"
    tav_quit
}

test_leaving_does_not_wait() {
    tav_start_hanging "$work/shown"
    tav_ready "$work/shown"
    click_row hang
    wait_for "it is waited for" status_is "Waiting for '$work/hang'"
    tav_quit
}

test_everything_else_goes_on
test_the_hotlist_menu
test_it_is_shown_when_it_answers
test_leaving_does_not_wait
