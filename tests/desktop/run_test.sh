#!/usr/bin/env bash
# script/run: on a display it makes the folder for the settings, starts tav and hands Ctrl-C on; without one
# it takes a tour and says where the pictures are.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

top=$(cd "$desktop_dir/../.." && pwd)

# The tav that a script/run started last has as its child.
child_of_run() { child=$(pgrep -P "$run_pid" -x tav); }

# run ARGUMENT...: script/run as a terminal starts it, as the leader of a group that may be interrupted; its
# id is in run_pid.
run() {
    tav_count=$((tav_count + 1))
    env --default-signal=INT setsid "$top/script/run" "$@" >"$work/run.out" 2>"$work/tav.$tav_count.err" </dev/null &
    run_pid=$!
    pids+=("$run_pid")
}

test_with_a_display() {
    export HOME=$work/newhome
    mkdir -p "$HOME" "$work/here/docs"
    cd "$work/here"
    WAIT_SECONDS=240 # it may have to build
    run docs
    wait_for "script/run starts tav" child_of_run
    WAIT_SECONDS=60
    pids+=("$child")
    tav_ready "$work/here/docs" "$child"
    [ -d "$HOME/.ph" ] || fail "no folder for the settings"
    kill -INT -- "-$run_pid" # as Ctrl-C: to the script's group, which is not tav's
    tav_status "$run_pid"
    expect 0 "$tav_exit" "exit status of script/run"
    tav_is_gone "$child" || fail "tav outlives script/run"
    expect 4668 "$(stat -c %s "$HOME/.ph/tav/config.003")" "size of the settings"
    cd /
}

test_without_a_display() {
    local picture pictures=0
    (
        unset DISPLAY
        "$top/script/run" "$work/here" >"$work/tour.out" 2>"$work/tour.err"
    ) || fail "the tour failed: $(tail -n 5 "$work/tour.err")"
    while read -r picture; do
        pictures=$((pictures + 1))
        file "$picture" | grep -q 'PNG image' || fail "no picture: $picture"
    done < <(grep '^/.*[.]png$' "$work/tour.out")
    [ "$pictures" -ge 3 ] || fail "only $pictures pictures"
    head -n 30 "$work/tour.out" | grep -q "There is no display" || fail "it does not say what it does"
}

desktop_start
test_with_a_display
test_without_a_display
