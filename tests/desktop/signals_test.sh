#!/usr/bin/env bash
# Signals and surprises from outside: the refresh, the end by a signal, directories that go away.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

test_refresh() {
    mkdir "$work/shown"
    touch "$work/shown/first"
    tav_start "$work/shown"
    tav_ready "$work/shown"
    wait_for "the first file is listed" look_has '"first"'
    touch "$work/shown/second"
    rm "$work/shown/first"
    kill -WINCH "$tav_pid"
    wait_for "the new file is listed" look_has '"second"'
    ! look_has '"first"' || fail "the removed file is still listed"
    tav_quit
}

test_ends_by_signal() {
    local signal
    for signal in TERM INT HUP QUIT USR1 USR2; do
        rm -rf "$HOME/.ph/tav"
        tav_start "$work"
        tav_ready "$work"
        kill -s "$signal" "$tav_pid"
        tav_status
        expect 0 "$tav_exit" "exit status after $signal"
        [ -s "$HOME/.ph/tav/config.003" ] || fail "nothing was saved after $signal"
    done
}

test_pipe_is_ignored() {
    tav_start "$work/shown"
    tav_ready "$work/shown"
    kill -PIPE "$tav_pid"
    touch "$work/shown/third"
    kill -WINCH "$tav_pid"
    wait_for "tav lives and refreshes" look_has '"third"'
    tav_quit
}

# tav leads a process group of its own: what is sent to the group of its starter does not reach it.
test_own_group() {
    tav_start "$work/shown"
    tav_ready "$work/shown"
    expect "$tav_pid" "$(ps -o pgid= -p "$tav_pid" | tr -d ' ')" "process group"
    tav_quit
}

test_shown_directory_goes_away() {
    mkdir "$work/going"
    touch "$work/going/file"
    tav_start "$work/going"
    tav_ready "$work/going"
    wait_for "the file is listed" look_has '"file"'
    rm -r "$work/going"
    kill -WINCH "$tav_pid"
    wait_for "the list is empty" lists_no_file
    tav_is_gone && fail "tav ended"
    mkdir "$work/going"
    touch "$work/going/again"
    kill -WINCH "$tav_pid"
    wait_for "the directory is back" look_has '"again"'
    tav_quit
}
lists_no_file() { [ "$(look | grep "list item" | grep -vc '"\.\."')" = 0 ]; }

# A start directory that may not be read is told; then the window is there, without a directory.
test_unreadable_start() {
    mkdir "$work/closed"
    chmod 000 "$work/closed"
    tav_start_refused "$work/closed"
    wait_for "it says so" active_is Error
    keys Return
    wait_for "the window has the keyboard" active_is TAV
    tav_quit
}

# A signal that comes while that is being told, before the main loop, ends the program too.
test_ends_below_the_first_box() {
    tav_start_refused "$work/closed"
    wait_for "it says so" active_is Error
    kill -TERM "$tav_pid"
    tav_status
    expect 0 "$tav_exit" "exit status"
    chmod 700 "$work/run"
}

test_strange_names() {
    mkdir "$work/strange"
    local name names=('<b>bold<i>' 'a & b' "$(printf 'x%.0s' {1..255})"
        $'new\nline' $'tab\tname' $'bad\xff\xfebytes' $'\u202edirection')
    for name in "${names[@]}"; do
        touch "$work/strange/$name"
    done
    ln -s loop "$work/strange/loop"
    tav_start "$work/strange"
    tav_ready "$work/strange"
    wait_for "markup is shown as it is" look_has '"<b>bold<i>"'
    look_has '"a & b"' || fail "an ampersand is shown as it is"
    expect 8 "$(look | grep "list item" | grep -vc '"\.\."')" "rows"
    tav_quit
}

desktop_start
desktop_bus
test_refresh
test_ends_by_signal
test_pipe_is_ignored
test_own_group
test_shown_directory_goes_away
test_unreadable_start
test_ends_below_the_first_box
test_strange_names
