#!/bin/bash
# The platform programs of data/programs, with stand-ins for everything that they hand over to.
# Usage: programs_test.sh DIRECTORY-OF-THE-PROGRAMS
set -uo pipefail

programs=$(realpath -- "$1")
work=$(mktemp -d)
bin=$work/bin
children=()
failed=0
trap 'kill -KILL "${children[@]}" 2>/dev/null; rm -rf "$work"' EXIT
mkdir "$bin"
cd "$work" || exit 1

# stand_in NAME...: programs that write their name and arguments down, each argument in brackets.
stand_in() {
    local name
    for name in "$@"; do
        # shellcheck disable=SC2016 # for the stand-in's shell
        printf '#!/bin/sh\n{ printf "%%s" "%s"; for a; do printf " [%%s]" "$a"; done; } >"%s"\n' \
            "$name" "$work/out" >"$bin/$name"
        chmod +x "$bin/$name"
    done
}

# fresh NAME...: nothing is there but these stand-ins and what the scripts themselves need.
fresh() {
    rm -rf "$bin" "$work/out" "$work/err"
    mkdir "$bin"
    ln -s "$(command -v readlink)" "$(command -v id)" "$bin/"
    stand_in "$@"
}

# run [NAME=VALUE]... PROGRAM ARGUMENT...: on a desktop of sorts, without a terminal; sets status.
run() {
    local settings=(DISPLAY=:none)
    while [[ $1 == [A-Z]*=* ]]; do
        settings+=("$1")
        shift
    done
    local program=$1
    shift
    rm -f "$work/out"
    env -i PATH="$bin" "${settings[@]}" "$programs/$program" "$@" </dev/null >"$work/stdout" 2>"$work/err"
    status=$?
}

# expect TEXT: what the stand-in was given; "" when none ran.
expect() {
    local got=
    [ ! -e "$work/out" ] || got=$(cat "$work/out")
    [ "$got" = "$1" ] || complain "expected <$1>, got <$got>; $(cat "$work/err")"
}

# says TEXT: on standard error, and the program failed.
says() {
    grep -qF -- "$1" "$work/err" || complain "expected the message <$1>, got <$(cat "$work/err")>"
    [ "$status" -eq 1 ] || complain "expected status 1, got $status"
}

complain() {
    echo "FAILED: line ${BASH_LINENO[1]}: $*" >&2
    failed=1
}

hostile=$'a b\'c"d$(x)`y`\\;&|*\n-'

# --- ped

fresh vi nano xterm gedit
run VISUAL=vi EDITOR=nano ped a.c
expect "xterm [-e] [vi] [a.c]"
run EDITOR=nano ped a.c "$hostile"
expect "xterm [-e] [nano] [a.c] [$hostile]"
run EDITOR="gedit --wait" ped a.c
expect "gedit [--wait] [a.c]"
run EDITOR=not-there ped a.c
expect "gedit [a.c]"
run ped a.c
expect "gedit [a.c]"
fresh nano xterm
run ped a.c
expect "xterm [-e] [nano] [a.c]"
fresh xdg-open
run ped a.c
expect "xdg-open [a.c]"
fresh
run ped a.c
says "ped: no editor was found. Set EDITOR or VISUAL, or install one."
fresh nano
run DISPLAY= ped a.c
says "no terminal program was found to run nano in."

# In a terminal of its own it needs no other.
fresh nano xterm
env -i PATH="$bin" DISPLAY=:none "$(command -v script)" -qec "$programs/ped a.c" /dev/null </dev/null >/dev/null 2>"$work/err"
expect "nano [a.c]"

# --- pterm

fresh xterm gnome-terminal
run pterm
expect "gnome-terminal"
run TERMINAL=xterm pterm
expect "xterm"
stand_in ls
run pterm ls -l "$hostile"
expect "gnome-terminal [--] [ls] [-l] [$hostile]"
fresh xfce4-terminal ls
run pterm ls "$hostile"
expect "xfce4-terminal [-x] [ls] [$hostile]"
fresh kitty ls
run pterm ls "$hostile"
expect "kitty [ls] [$hostile]"
fresh lxterminal ls
run pterm ls "a'b" "c d"
expect "lxterminal [-e] ['ls' 'a'\\''b' 'c d']"
fresh xterm ls
ln -s xterm "$bin/x-terminal-emulator"
run pterm ls
expect "xterm [-e] [ls]"
run pterm no-such-program
says "pterm: no-such-program was not found."
fresh ls
run pterm ls
says "no terminal program was found. Install one, such as xterm, or set TERMINAL."

# With -z the terminal stays until Enter is pressed.
fresh ls
printf '#!/bin/sh\nshift\nexec "$@"\n' >"$bin/xterm"
chmod +x "$bin/xterm"
ln -s /bin/sh "$bin/sh"
run pterm -z ls "$hostile"
expect "ls [$hostile]"
grep -q 'ls has ended. Press Enter to close' "$work/stdout" || complain "does not wait"

# --- pictures, sound, pages

fresh xdg-open eog
run pv a.jpg
expect "xdg-open [a.jpg]"
fresh eog
run pv a.jpg "$hostile"
expect "eog [a.jpg] [$hostile]"
run DISPLAY= pv a.jpg
says "no program was found to show pictures."
run pv
[ "$status" -eq 2 ] || complain "pv without a file is wrong usage"

for player in phplay realplay; do
    fresh mpv
    run $player a.wav "$hostile"
    expect "mpv [a.wav] [$hostile]"
    fresh aplay xterm
    run $player a.wav
    expect "xterm [-e] [aplay] [a.wav]"
    fresh
    run $player a.wav
    says "no program was found to play this."
done

fresh firefox xdg-open
touch 'a b#c%20.html'
run voyager -u "file://$work/a b#c%20.html"
expect "xdg-open [$work/a b#c%20.html]"
run BROWSER=firefox voyager -u http://host/
expect "firefox [http://host/]"
fresh firefox
run voyager http://host/
expect "firefox [http://host/]"
fresh w3m xterm
run voyager http://host/
expect "xterm [-e] [w3m] [http://host/]"
fresh
run voyager http://host/
says "no web browser was found. Install one, or set BROWSER."

# --- coreinfo

fresh file gdb
run coreinfo x.core
expect "gdb [-q] [-batch] [-nx] [-iex] [set auto-load off] [-c] [x.core] [-ex] [info threads] [-ex] [bt]"
fresh eu-stack
run coreinfo x.core
expect "eu-stack [--core] [x.core]"
fresh
run coreinfo x.core
says "no program was found to read core files"

# --- how it is said

fresh zenity xmessage
run pv a.jpg
expect "zenity [--error] [--no-markup] [--title=pv] [--text=no program was found to show pictures.]"
fresh xmessage
run pv a.jpg
expect "xmessage [-center] [pv: no program was found to show pictures.]"
fresh xterm
run pv a.jpg
grep -q '^xterm \[-e\] \[sh\] \[-c\] .*\[pv: no program was found to show pictures.\]$' "$work/out" ||
    complain "no window says it"

# --- slay

# start NAME: a process of that name; sets child.
start() {
    cp "$(command -v sleep)" "$work/$1" 2>/dev/null
    "$work/$1" 1000 &
    child=$!
    children+=("$child")
    until read -r -d '' name <"/proc/$child/comm" || [[ ${1:0:15} == "${name%$'\n'}" ]]; do :; done
}

# ended PID SIGNAL TEXT: by that signal.
ended() {
    wait "$1" 2>/dev/null
    [ $? -eq $((128 + $2)) ] || complain "$3"
}

slay() {
    "$programs/slay" "$@" 2>"$work/err"
    status=$?
}

start slay_target
one=$child
start slay_target
two=$child
start slay_other
other=$child
slay -f -s SIGUSR1 slay_target
[ "$status" -eq 0 ] || complain "slay found nothing"
ended "$one" 10 "the first was not signalled"
ended "$two" 10 "the second was not signalled"
kill -0 "$other" 2>/dev/null || complain "another name was signalled"
slay -f -s SIGUSR1 slay_target
[ "$status" -eq 1 ] || complain "nothing was there, but status $status"
slay slay_other
ended "$other" 15 "without a signal it is TERM"

start a_name_longer_than_fifteen
long=$child
slay -s USR1 a_name_longer_than_another a_name_longer
kill -0 "$long" 2>/dev/null || complain "a name that only begins alike was signalled"
slay -s USR1 a_name_longer_than_fifteen
ended "$long" 10 "a long name was not found"

# A process of another user, as the system tells it, is left alone.
start slay_target
mkdir -p "$work/proc/$child" "$work/proc/self"
printf 'Name:\tslay_target\nState:\tS (sleeping)\nUid:\t%s\t0\t0\t0\n' $(($(id -u) + 1)) >"$work/proc/$child/status"
SLAY_PROC=$work/proc slay -f -s SIGUSR1 slay_target
[ "$status" -eq 1 ] || complain "status $status for another user's process"
kill -0 "$child" 2>/dev/null || complain "another user's process was signalled"

slay -f -s SIGWINCH slay
[ "$status" -eq 1 ] || complain "slay signalled itself"
slay -x
[ "$status" -eq 2 ] || complain "a wrong option is wrong usage"
slay -f
[ "$status" -eq 2 ] || complain "no name is wrong usage"
[ ! -s "$work/err" ] || grep -q Usage "$work/err" || complain "slay says too much: $(cat "$work/err")"

exit $failed
