#!/usr/bin/env bash
# The way from Enter on a file to the user's editor in a terminal where nothing else is installed, and what
# typing on the list does: finding names and running command lines.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/docs
mkdir -p "$dir/sub"
for name in a.c b.txt; do echo text >"$dir/$name"; done

stand_in lp show ped
unset EDITOR VISUAL TERMINAL
desktop_start
desktop_bus

status_is_not() { ! status_is "$1"; }

test_typing() {
    tav_start "$dir"
    tav_ready "$dir"
    types "b.t"
    wait_for "typing finds a name" is_selected b.txt
    wait_for "what is typed is shown" status_is /b.t
    keys BackSpace
    wait_for "Backspace takes a character back" status_is /b.
    keys BackSpace BackSpace
    wait_for "and the next ones" status_is /
    keys BackSpace
    wait_for "one more ends typing" status_is_not /
    tav_shows "$dir" || fail "which leaves the directory"
    types "?a"
    wait_for "a question mark finds the first entry" is_selected a.c
    wait_for "its mode is shown" status_is "?a"
    keys Return
    wait_for "Return ends it" status_is_not "?a"
    is_selected a.c || fail "and leaves the selection"
    [ ! -e "$work/ran" ] || fail "and opens something"
    types ":show a  'b c' \"d e\"x"
    wait_for "a command line is shown" status_is ":show a  'b c' \"d e\"x"
    keys BackSpace Return
    expect_run "show [a] ['b] [c'] [d e]" "a colon"
    types ":no-such-program"
    keys Return
    wait_for "a program that is not there is named" status_is "Cannot run 'no-such-program': not found"
    types "/s*b"
    wait_for "a slash finds a pattern" is_selected sub
    keys Return
    wait_for "Return opens what was found" tav_shows "$dir/sub"
    keys BackSpace
    wait_for "Backspace without typing goes up" tav_shows "$dir"
    types "/"
    keys Return
    wait_for "a slash alone repeats the search" tav_shows "$dir/sub"
    tav_quit
}

# Nothing is there but a terminal and the editor that the user has named.
test_editor_in_a_terminal() {
    rm "$bin/ped"
    cat >"$bin/own_editor" <<END
#!/bin/sh
{ tty; pwd; printf '%s\n' "\$@"; } >"$work/edited.draft"
mv "$work/edited.draft" "$work/edited"
read -r line
echo "\$line" >"$work/typed"
END
    chmod +x "$bin/own_editor"
    stand_in recording_terminal
    EDITOR=own_editor TERMINAL=recording_terminal tav_start "$dir"
    tav_ready "$dir"
    select_one a.c
    keys Return
    expect_run "recording_terminal [-e] [own_editor] [a.c]" "Enter on a.c"
    tav_quit

    EDITOR=own_editor TERMINAL=xterm tav_start "$dir"
    tav_ready "$dir"
    echo text >"$dir/a b'\$x.c"
    keys F5
    for name in a.c "a b'\$x.c"; do
        rm -f "$work/edited" "$work/typed"
        select_one "$name"
        keys Return
        wait_for "the editor runs on $name" test -e "$work/edited"
        grep -q '^/dev/pts/' "$work/edited" || fail "the editor has no terminal: $(cat "$work/edited")"
        expect "$dir,$name" "$(tail -n 2 "$work/edited" | paste -sd ,)" "where and what it edits"
        wait_for "its window has the keyboard" editor_is_active
        types "hello"
        keys Return
        wait_for "it reads what is typed" grep -qx hello "$work/typed"
        wait_for "tav has the keyboard again" tav_is_active
    done
    tav_quit
}

editor_is_active() { xdotool getactivewindow getwindowname | grep -q own_editor; }

# A program that reads its terminal, typed as a command, is started again where it can.
test_reader_gets_a_terminal() {
    rm -f "$bin/pterm" "$work/edited" "$work/typed"
    printf '#!/bin/sh\nexec script -qec "%s %s" /dev/null\n' "$TAV" "$dir" >"$bin/in_terminal"
    chmod +x "$bin/in_terminal"
    TERMINAL=xterm setsid xterm -e "$bin/in_terminal" &
    pids+=($!)
    wait_for "tav runs in a terminal" tav_in_terminal
    tav_pid=$(tav_in_terminal)
    wait_for "it shows the directory" tav_shows "$dir"
    wait_for "tav has the keyboard" tav_activate
    types ":own_editor x"
    keys Return
    wait_for "the editor has got a terminal" test -e "$work/edited"
    wait_for "its window has the keyboard" editor_is_active
    types "again"
    keys Return
    wait_for "it reads what is typed" grep -qx again "$work/typed"
    wait_for "tav has the keyboard again" tav_is_active
    keys alt+x
    wait_for "tav ends" tav_is_gone
}

tav_in_terminal() { pgrep -f "^$TAV $dir\$"; }

typing_lasts
test_typing
test_editor_in_a_terminal
test_reader_gets_a_terminal
