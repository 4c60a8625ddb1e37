# What every test on a desktop shares: a display, a window manager and a home of its own, starting tav on
# them, waiting for conditions, keys and pictures. A test is a script that sources this file, gets the
# program's path as its first argument, and ends with status 0 when all went well:
#
#   source "$(dirname "$0")/lib.sh"
#   desktop_start
#   tav_start "$work/docs"
#   wait_for "the directory is shown" tav_shows "$work/docs"
#
# Everything that was started ends with the script; what it wrote is removed ($work), unless TAV_KEEP is set.
# shellcheck shell=bash
set -euo pipefail

desktop_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
TAV=${1:-${TAV:-$desktop_dir/../../build/release/tav}}
TAV=$(realpath -- "$TAV")
WAIT_SECONDS=${WAIT_SECONDS:-60} # the longest that any condition is waited for
work=$(mktemp -d "${TMPDIR:-/tmp}/tav_desktop_XXXXXX")
pids=()     # what ends with the script
tav_pid=    # the tav that was started last
tav_count=0 # tavs started so far
tav_as=()   # what tav is started by, else directly
export SLAY_PROC=$work/proc # so that the end of a job is told to the tavs of this test alone
mkdir "$SLAY_PROC"
bin=$work/bin # stand-ins for programs (stand_in)

# Ends every process that was started with its group; removes the work directory.
desktop_end() {
    local status=$? pid
    trap - EXIT
    for pid in "${pids[@]-}"; do
        [ -z "$pid" ] || kill -KILL -- "-$pid" "$pid" 2>/dev/null || true
    done
    wait "${pids[@]-}" 2>/dev/null || true
    if [ -n "${TAV_KEEP-}" ]; then
        echo "kept: $work"
    else
        chmod -R u+rwX "$work" 2>/dev/null || true
        rm -rf "$work"
    fi
    exit "$status"
}
trap desktop_end EXIT
trap 'exit 130' INT TERM HUP

# fail TEXT: says what is wrong, shows what tav printed, keeps a picture when TAV_KEEP is set; ends.
fail() {
    echo "FAILED: $*" >&2
    tail -n 20 "$work"/tav.*.err >&2 2>/dev/null || true
    [ -z "${TAV_KEEP-}" ] || shot "$work/failed.png" || true
    exit 1
}

# wait_for TEXT COMMAND...: until the command succeeds, at most WAIT_SECONDS. Fails saying TEXT.
wait_for() {
    local text=$1 limit=$((SECONDS + WAIT_SECONDS))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $limit ] || fail "waited in vain: $text"
        sleep 0.05
    done
}

# expect WANTED GOT TEXT
expect() { [ "$1" = "$2" ] || fail "$3: expected '$1', got '$2'"; }

# desktop_start [GEOMETRY]: a display whose number is free, a window manager, a home with .ph, no session bus.
desktop_start() {
    export HOME=$work/home
    export XDG_CONFIG_HOME=$HOME/.config XDG_CACHE_HOME=$HOME/.cache XDG_DATA_HOME=$HOME/.local/share
    export XDG_RUNTIME_DIR=$work/run LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$work/no-bus
    unset WAYLAND_DISPLAY SESSION_MANAGER QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE XDG_CURRENT_DESKTOP
    mkdir -p "$HOME/.ph" "$XDG_RUNTIME_DIR"
    chmod 700 "$XDG_RUNTIME_DIR"

    setsid Xvfb -displayfd 3 -screen 0 "${1:-1280x900x24}" -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
    pids+=($!)
    wait_for "Xvfb is up" test -s "$work/display"
    DISPLAY=:$(cat "$work/display")
    export DISPLAY
    setsid openbox --sm-disable >/dev/null 2>&1 &
    pids+=($!)
    wait_for "the window manager is up" wm_is_up
}

wm_is_up() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '0x'; }

# desktop_bus: a session bus and the accessibility bus on it, so that tests/desktop/look.py sees widgets. Call
# after desktop_start, before tav_start.
desktop_bus() {
    setsid dbus-daemon --session --nofork --print-address=3 3>"$work/bus" >/dev/null 2>&1 &
    pids+=($!)
    wait_for "the session bus is up" test -s "$work/bus"
    DBUS_SESSION_BUS_ADDRESS=$(head -n 1 "$work/bus")
    export DBUS_SESSION_BUS_ADDRESS QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1
    setsid /usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
    pids+=($!)
    wait_for "the accessibility bus is up" dbus-send --session --print-reply --dest=org.a11y.Bus \
        /org/a11y/bus org.a11y.Bus.GetAddress
}

# tav_start ARGUMENT...: starts tav; sets tav_pid. What it prints goes to $work/tav.N.out and .err.
tav_start() {
    tav_count=$((tav_count + 1))
    "${tav_as[@]}" "$TAV" "$@" >"$work/tav.$tav_count.out" 2>"$work/tav.$tav_count.err" </dev/null &
    tav_pid=$!
    pids+=("$tav_pid")
    ln -sfn "/proc/$tav_pid" "$work/proc/$tav_pid"
}

# tav_start_refused ARGUMENT...: the same as somebody who is refused things, which root is not.
tav_start_refused() {
    local TAV=$TAV tav_as=()
    if [ "$(id -u)" = 0 ]; then
        chmod 755 "$work"
        chmod 777 "$work/run"
        cp "$TAV" "$work/tav"
        TAV=$work/tav
        tav_as=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    fi
    tav_start "$@"
}

# find_windows ARGUMENT...: as "xdotool search", which ends with an X error when any window on the display goes away
# while it looks; then it looks again.
find_windows() {
    local found tries=50 errors=$work/find.$BASHPID
    while ! found=$(xdotool search "$@" 2>"$errors"); do
        grep -q 'X Error' "$errors" && [ $((tries -= 1)) -gt 0 ] || return
    done
    printf '%s\n' "$found"
}

# tav_window [PID]: the id of the visible main window.
tav_window() { find_windows --all --onlyvisible --pid "${1:-$tav_pid}" --name . | tail -n 1 | grep .; }

# tav_shows DIRECTORY [PID]: the program shows it (its working directory follows what is shown).
tav_shows() { [ "$(readlink "/proc/${2:-$tav_pid}/cwd")" = "$1" ] && tav_window "${2:-$tav_pid}"; }

# tav_ready DIRECTORY [PID]: waits until its window is there, shows the directory and has the keyboard.
tav_ready() {
    wait_for "tav shows $1" tav_shows "$1" "${2:-$tav_pid}"
    wait_for "tav has the keyboard" tav_is_active "${2:-$tav_pid}"
}

tav_is_active() { [ "$(xdotool getactivewindow getwindowpid)" = "${1:-$tav_pid}" ]; }

# tav_activate: asks the window manager for the keyboard; whether the last tav has it.
tav_activate() {
    local window
    window=$(tav_window) && wmctrl -i -a "$window" && tav_is_active
}

tav_is_gone() { ! kill -0 "${1:-$tav_pid}" 2>/dev/null || grep -q '^State:.Z' "/proc/${1:-$tav_pid}/status"; }

# tav_status [PID]: waits for its end; its exit status is in tav_exit.
# shellcheck disable=SC2034 # for the script that sources this
tav_status() {
    wait_for "tav ends" tav_is_gone "${1:-$tav_pid}"
    tav_exit=0
    wait "${1:-$tav_pid}" || tav_exit=$?
}

# tav_close [PID]: as the user does by the window's frame.
tav_close() { wait_for "its window can be closed" tav_close_once "${1:-$tav_pid}"; }
tav_close_once() {
    local window
    window=$(tav_window "$1") && wmctrl -i -c "$window"
}

keys() { xdotool key --clearmodifiers --delay 30 "$@"; }
types() { xdotool type --clearmodifiers --delay 20 -- "$1"; }

# shot FILE: a picture of the whole display.
shot() { import -silent -window root "$1"; }

# look: what assistive technology sees of tav, one line per widget (needs desktop_bus).
look() { timeout "$WAIT_SECONDS" /usr/bin/python3 "$desktop_dir/look.py" "${1:-$tav_pid}"; }
look_has() { look | grep -F -- "$1" >/dev/null; } # reads on to the end, or look would be cut off

# place_of NAME...: where the first thing of that name is, as "X Y"; each further name is sought in what the
# one before it names (needs desktop_bus).
place_of() { /usr/bin/python3 "$desktop_dir/look.py" "$tav_pid" "$@"; }

# click_on NAME...: a click there.
click_on() {
    local place
    place=$(place_of "$@") || fail "nothing to click on: $*"
    # shellcheck disable=SC2086 # two numbers
    xdotool mousemove $place click 1
}

# window_named NAME: whether a window of that title (a pattern) is there.
window_named() { find_windows --onlyvisible --name "^$1\$"; }
no_window_named() { ! window_named "$1"; }
# window_focus NAME: the window of that title gets the keyboard.
window_focus() { wait_for "$1 has the keyboard" window_focus_once "$1"; }
window_focus_once() { active_is "$1" || { wmctrl -F -a "$1" && active_is "$1"; }; }
active_is() { xdotool getactivewindow getwindowname | grep -x "$1"; }

# stand_in NAME...: programs in $bin, first in PATH, that write their name and arguments
# down, each argument in brackets.
stand_in() {
    local name
    mkdir -p "$bin"
    export PATH=$bin:/usr/bin:/bin
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

# What the list and the status bar show (these need desktop_bus).
selected() { look | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
is_selected() { [ "$(selected)" = "$1" ]; }
status_is() { look_has "label \"$1\""; }

# select_one NAME: the cursor and the selection are there and nowhere else.
select_one() {
    types "$1"
    wait_for "$1 is selected" is_selected "$1"
    keys Escape
}

# typing_lasts: what is typed on the list is not forgotten for a minute (else for 1.5 s), so that a busy machine
# can be looked at. Starts and ends a tav.
typing_lasts() {
    tav_start "$work"
    tav_ready "$work"
    tav_quit
    printf '\x60\xEA\0\0' | dd of="$HOME/.ph/tav/config.003" bs=1 seek=4652 conv=notrunc status=none
}

# tav_geometry: "WIDTHxHEIGHT+X+Y" of the window's inside.
tav_geometry() {
    local window
    window=$(tav_window) || return # without an id it would wait for a click
    xwininfo -id "$window" | awk '
        /Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF }
        /Width:/ { w = $NF } /Height:/ { h = $NF } END { print w "x" h "+" x "+" y }'
}

# tav_has_size WIDTHxHEIGHT: to the pixel or two that keeping lengths in reference pixels may cost.
tav_has_size() {
    local got
    got=$(tav_geometry) || return
    got=${got%%+*}
    near "${got%x*}" "${1%x*}" && near "${got#*x}" "${1#*x}"
}
near() { [ $(($1 - $2)) -ge -2 ] && [ $(($1 - $2)) -le 2 ]; }

# tav_quit: ends the last tav as the user does and expects that it ended well.
tav_quit() {
    tav_close
    tav_status
    expect 0 "$tav_exit" "exit status"
}
