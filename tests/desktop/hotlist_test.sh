#!/bin/bash
# The hotlist as a person uses it: a click shows a directory, a drag puts the third row before the first,
# and both the order and a row added by key are there after a restart. A second instance that is closed
# meanwhile loses nothing of it.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

rows() { look | grep -oE "table cell \"$work/[a-z]+\"" | grep -oE "[a-z]+.\$" | tr -d "\"" | xargs; }
rows_are() { [ "$(rows)" = "$1" ]; }
file_is() { [ "$(xargs -r -n 1 basename <"$HOME/.ph/tav/hotlist.001" | xargs)" = "$1" ]; }
middle() { place_of "$work/$1"; }

# drag NAME NAME PIXELS: from the row to so many pixels off the other one's middle.
drag() {
    local from to x y
    read -ra from <<<"$(middle "$1")"
    read -ra to <<<"$(middle "$2")"
    x=${to[0]} y=$((to[1] + $3))
    xdotool mousemove --sync "${from[@]}" mousedown 1
    xdotool mousemove --sync "${from[0]}" $((from[1] - 6)) mousemove --sync "${from[0]}" $((from[1] - 14))
    xdotool mousemove --sync "$x" $((y + 3)) mousemove --sync "$x" $((y + 1)) mousemove --sync "$x" "$y"
    xdotool mouseup 1
}

desktop_start
desktop_bus
mkdir -p "$work"/{one,two,three,four} "$HOME/.ph/tav"
printf '%s\n' "$work/one" "$work/two" "$work/three" >"$HOME/.ph/tav/hotlist.001"

tav_start "$work"
tav_ready "$work"
first=$tav_pid
wait_for "the rows stand in the file's order" rows_are "one two three"

place=$(middle two)
# shellcheck disable=SC2086 # two words
xdotool mousemove --sync $place click 1
wait_for "a click shows the directory" tav_shows "$work/two"

drag three one -5
wait_for "the third row stands first" rows_are "three one two"

# Another instance starts with the old file, adds a directory, and is closed first.
tav_start "$work/four"
tav_ready "$work/four"
wait_for "the other one has the file's order" rows_are "one two three"
keys ctrl+d
wait_for "the directory is added" rows_are "one two three four"
tav_close
tav_status
expect 0 "$tav_exit" "status of the other one"
file_is "one two three four" || fail "the other one wrote its addition"

tav_close "$first"
tav_status "$first"
expect 0 "$tav_exit" "status of the first one"
file_is "three one two four" || fail "our order and their addition: $(cat "$HOME/.ph/tav/hotlist.001")"

tav_start "$work"
tav_ready "$work"
wait_for "the order survived" rows_are "three one two four"
tav_close
tav_status
file_is "three one two four" || fail "nothing changed at the second end"
