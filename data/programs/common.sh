# shellcheck shell=sh
# What the platform programs share. Sourced, never run. Uses nothing but the shell itself.

me=${0##*/}

# Where the system has something else of our name, our folder comes first on the way here. What is started
# from here finds everything as usual.
PATH=${PATH#"${0%/*}":}

# Whether there is a desktop to show windows on.
has_display() {
    [ -n "${WAYLAND_DISPLAY:-}${DISPLAY:-}" ]
}

have() {
    command -v "$1" >/dev/null 2>&1
}

# Whether the terminal is ours to use: a program in the background is stopped when it reads one.
in_terminal() {
    [ -t 0 ] && [ -t 1 ] || return 1
    read -r stat <"/proc/$$/stat" || return 1
    # shellcheck disable=SC2086 # the fields behind the name in parentheses: state ppid pgrp session tty tpgid
    set -- ${stat##*) }
    [ "$3" = "$6" ]
}

# Says what is missing, in a window where there is one, and on standard error, and gives up.
fail() {
    printf '%s: %s\n' "$me" "$1" >&2
    if has_display; then
        if have zenity; then
            zenity --error --no-markup --title="$me" --text="$1"
        elif have kdialog; then
            kdialog --title "$me" --error "$1"
        elif have xmessage; then
            xmessage -center "$me: $1"
        elif have notify-send; then
            notify-send "$me" "$1"
        elif ! in_terminal && find_terminal; then
            # shellcheck disable=SC2016 # for the shell in the terminal
            (in_new_terminal sh -c 'printf "%s\n\nPress Enter to close " "$1"; read -r _' "$me" "$me: $1")
        fi
    fi
    exit 1
}

# Sets found to the first of the programs that is there.
find_first() {
    for found in "$@"; do
        if have "$found"; then
            return 0
        fi
    done
    found=
    return 1
}

# Sets terminal to the user's terminal program.
find_terminal() {
    find_first ${TERMINAL:+"$TERMINAL"} x-terminal-emulator gnome-terminal ptyxis kgx konsole \
        xfce4-terminal mate-terminal qterminal lxterminal terminator tilix kitty foot alacritty \
        wezterm urxvt rxvt st uxterm xterm || return 1
    terminal=$found
}

# Sets quoted to the arguments as one text for those terminals that split a text themselves.
quote_arguments() {
    quoted=
    for argument in "$@"; do
        text=
        while :; do
            case $argument in
            *\'*)
                text=$text${argument%%\'*}"'\\''"
                argument=${argument#*\'}
                ;;
            *) break ;;
            esac
        done
        quoted="$quoted${quoted:+ }'$text$argument'"
    done
}

# Runs the arguments in a window of the terminal that find_terminal found.
in_new_terminal() {
    path=$(command -v "$terminal")
    kind=$(readlink -f "$path" 2>/dev/null) || kind=$path
    case ${kind##*/} in
    gnome-terminal.wrapper) exec "$terminal" -e "$@" ;;
    gnome-terminal* | ptyxis | kgx) exec "$terminal" -- "$@" ;;
    xfce4-terminal* | mate-terminal* | terminator*) exec "$terminal" -x "$@" ;;
    kitty | foot | footclient) exec "$terminal" "$@" ;;
    wezterm) exec "$terminal" start -- "$@" ;;
    lxterminal | sakura | tilix* | terminology)
        quote_arguments "$@"
        exec "$terminal" -e "$quoted"
        ;;
    *) exec "$terminal" -e "$@" ;;
    esac
}

# Runs a program that needs a terminal: in this one, else in a new one.
run_in_terminal() {
    if in_terminal; then
        exec "$@"
    fi
    has_display && find_terminal && in_new_terminal "$@"
    fail "no terminal program was found to run $1 in."
}

# Hands each file to the desktop's own program for it.
open_with_desktop() {
    if ! has_display || ! have xdg-open; then
        return 1
    fi
    for file in "$@"; do
        xdg-open "$file" || return 1
    done
    exit 0
}

# A program for each of them in turn is wanted, but none was named.
need_arguments() {
    if [ "$1" -eq 0 ]; then
        printf 'Usage: %s %s\n' "$me" "$2" >&2
        exit 2
    fi
}
