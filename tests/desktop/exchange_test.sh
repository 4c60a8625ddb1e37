#!/bin/bash
# Files go by clipboard between tav and other file managers, one of GTK and one of Qt: both ways, copied and
# cut. Where neither is installed there is nothing to exchange with, and the test says so.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"
# shellcheck source=tests/desktop/clip.sh
source "$(dirname "$0")/clip.sh"

desktop_start
desktop_bus
mkdir -p "$work"/ours
tav_open tav "$work/ours"
# shellcheck disable=SC2154 # set by tav_open
readonly tav

# The other program's window in front, the keyboard in its view of files: a click where no file is.
other_focus() { wait_for "its window has the keyboard" other_raise "$theirs"; }
other_raise() {
    local X Y WIDTH HEIGHT
    no_job_runs && wmctrl -F -a "$1" && [ "$(xdotool getactivewindow getwindowname)" = "$1" ] || return 1
    eval "$(xdotool getactivewindow getwindowgeometry --shell)"
    xdotool mousemove $((X + WIDTH * 3 / 4)) $((Y + HEIGHT * 3 / 4)) click 1
}
has_uri() { form text/uri-list | grep -F "$1"; }

# other_takes KEY FILE: the other program copies or cuts all that it lists, until the clipboard has it. It may
# not list it yet, and it may know only a little later that something is selected.
other_takes() {
    tries=0
    wait_for "$program puts $2 on the clipboard" other_takes_once "$1" "$2"
}
other_takes_once() {
    [ $((tries++ % 10)) != 0 ] || { other_raise "$theirs" && keys ctrl+a; } || return 1
    keys "$1"
    has_uri "/$2"
}

for program in pcmanfm pcmanfm-qt; do
    command -v "$program" >/dev/null || continue
    theirs=theirs_$program
    mkdir -p "$work/$theirs"
    echo their >"$work/$theirs/copied to us%"
    echo more >"$work/ours/copied to them"
    option=--no-desktop
    [ "$program" = pcmanfm ] || option=--new-window
    setsid "$program" "$option" "$work/$theirs" >"$work/$program.out" 2>&1 &
    pids+=($!)
    wait_for "$program is there" find_windows --onlyvisible --name "^$theirs\$"

    # From them, copied, then cut.
    other_takes ctrl+c "copied%20to%20us%25"
    paste_into "$tav"
    wait_for "copied from $program" holds "$work/ours/copied to us%" their
    holds "$work/$theirs/copied to us%" their || fail "$program's file is gone"
    rm "$work/ours/copied to us%" "$work/$theirs/copied to us%"
    echo cut >"$work/$theirs/cut for us"
    other_takes ctrl+x cut%20for%20us
    paste_into "$tav"
    wait_for "cut from $program" holds "$work/ours/cut for us" cut
    wait_for "$program's file is gone" test ! -e "$work/$theirs/cut for us"
    wait_for "nothing is left on the clipboard" clipboard_is_empty

    # To them, copied, then cut.
    tav_refresh "$tav"
    wait_for "our file is listed" row_is_there "$tav" "copied to them"
    select_rows "$tav" "copied to them"
    keys ctrl+c
    wait_for "it is on the clipboard" has_uri copied%20to%20them
    other_focus
    keys ctrl+v
    wait_for "copied by $program" holds "$work/$theirs/copied to them" more
    holds "$work/ours/copied to them" more || fail "our file is gone"
    select_rows "$tav" "cut for us"
    keys ctrl+x
    wait_for "it is on the clipboard" has_uri cut%20for%20us
    other_focus
    keys ctrl+v
    wait_for "moved by $program" holds "$work/$theirs/cut for us" cut
    wait_for "our file is gone" test ! -e "$work/ours/cut for us"
    rm "$work/ours/copied to them"
    wmctrl -F -c "$theirs"
    exchanged="${exchanged-} $program"
done

tav_quit
echo "exchanged with:${exchanged- no other file manager is installed}"
