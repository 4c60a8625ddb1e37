#!/usr/bin/env bash
# Where and how tav begins: the start directory, the window options, --help and --version, no display.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

test_directories() {
    mkdir -p "$work/there/docs" "$work/there/-dash" "$work/there/50"
    touch "$work/there/file"
    cd "$work/there"
    local words shown
    while IFS='|' read -r words shown; do
        # shellcheck disable=SC2086 # several words
        tav_start $words
        tav_ready "$shown"
        tav_quit
    done <<CASES
|$work/there
docs|$work/there/docs
docs/|$work/there/docs
$work/there/docs|$work/there/docs
/tmp|/tmp
-x 10|$work/there
-x 50|$work/there/50
-x10 docs|$work/there/docs
file|$work/there
missing|$work/there
-style fusion docs|$work/there
CASES
    cd /
}

test_window_options() {
    local x y
    tav_start -x100 -y120 -w700 -h500 /tmp
    tav_ready /tmp
    wait_for "the window has the size asked for" tav_has_size 700x500
    x=$(tav_geometry | cut -d+ -f2)
    y=$(tav_geometry | cut -d+ -f3)
    # The place is that of the frame, whose border and title come before the inside.
    if [ "$x" -lt 100 ] || [ "$x" -gt 110 ] || [ "$y" -lt 120 ] || [ "$y" -gt 160 ]; then
        fail "the window is at $x,$y"
    fi
    tav_quit
    # An option wins over the size that was just saved, which the next start without options uses.
    tav_start -w 650 -h 480 /tmp
    wait_for "the options win over the saved size" tav_has_size 650x480
    tav_quit
    tav_start /tmp
    wait_for "the saved size is used" tav_has_size 650x480
    tav_quit
}

test_states() {
    local window
    tav_start -Sm /tmp
    tav_ready /tmp
    window=$(tav_window)
    wait_for "the window is maximised" window_has_state "$window" MAXIMIZED
    tav_quit
    tav_start -S i /tmp
    wait_for "the window is iconified" iconified_window
    kill -TERM "$tav_pid"
    tav_status
    expect 0 "$tav_exit" "exit status of an iconified tav"
    tav_start -Sn /tmp
    tav_ready /tmp
    wait_for "the normal size was kept" tav_has_size 650x480
    tav_quit
}

window_has_state() { xprop -id "$1" _NET_WM_STATE | grep "$2" >/dev/null; }
iconified_window() {
    local window
    window=$(find_windows --pid "$tav_pid" --class tav | while read -r id; do
        xprop -id "$id" WM_STATE | grep Iconic >/dev/null && echo "$id"
    done)
    [ -n "$window" ]
}

test_texts() {
    expect "tav 1.13" "$("$TAV" --version)" "--version"
    local text name=$work/named
    ln -s "$TAV" "$name"
    text=$("$name" --help)
    expect "named [options]" "$(sed -n 2p <<<"$text")" "second line of --help"
    expect "  -S i|m|n    Initial window state: i=iconified, m=maximized, n=normal" \
        "$(sed -n 9p <<<"$text")" "ninth line of --help"
    expect "  dimension of 200x300." "$(tail -n 1 <<<"$text")" "last line of --help"
}

test_no_display() {
    local status=0
    (unset DISPLAY; "$TAV" /tmp) >"$work/nodisplay.out" 2>"$work/nodisplay.err" || status=$?
    expect 1 "$status" "exit status without a display"
    grep -q "tav: .*display" "$work/nodisplay.err" || fail "no word about the display"
}

# The option names the display, whatever the environment says.
test_server_option() {
    local display=$DISPLAY
    DISPLAY=:4321 tav_start "-s$display" /tmp
    tav_ready /tmp
    tav_quit
}

# One that is not there gives no window on another display that is.
test_server_that_is_not_there() {
    local server
    tav_as=(env -u QT_QPA_PLATFORM)
    for server in :4321 wayland-nowhere; do
        tav_start "-s$server" /tmp
        tav_status
        expect 1 "$tav_exit" "exit status with -s$server"
        grep -q '^tav: ' "$work/tav.$tav_count.err" || fail "no word about -s$server"
    done
    tav_as=()
}

test_two_at_once() {
    local first
    mkdir -p "$work/one" "$work/two"
    tav_start "$work/one"
    tav_ready "$work/one"
    first=$tav_pid
    tav_start "$work/two"
    tav_ready "$work/two"
    tav_shows "$work/one" "$first" || fail "the first tav went elsewhere"
    tav_quit
    tav_pid=$first
    tav_quit
}

desktop_start
test_texts
test_directories
test_window_options
test_states
test_server_option
test_server_that_is_not_there
test_two_at_once
test_no_display
