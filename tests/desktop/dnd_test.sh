#!/bin/bash
# Files dragged by the mouse within one window and between two instances: moved, copied with Ctrl, as the pointer
# shows, onto directories and "..", never onto themselves.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"
# shellcheck source=tests/desktop/clip.sh
source "$(dirname "$0")/clip.sh"

desktop_start 1280x900x24
desktop_bus
mkdir -p "$work"/{left/sub,right/sub}
for name in a b c d e f; do echo "$name" >"$work/left/$name"; done
tav_open left "$work/left"
tav_place "$left" 0 0 620 420
tav_open right "$work/right"
tav_place "$right" 640 0 620 420
# shellcheck disable=SC2154 # set by tav_open
readonly left right
is_right_of() { [ "$(row_place "$1" .. | cut -d' ' -f1)" -gt 640 ]; }
wait_for "the windows stand side by side" is_right_of "$right"

# Within one window. The pointer shows what Ctrl does without being moved.
select_rows "$left" a
read -ra place <<<"$(row_place "$left" sub)"
drag_begin "$left" a
drag_learn "${place[@]}"
drag_end
wait_for "dropped on a directory it is moved into it" holds "$work/left/sub/a" a
wait_for "its source is gone" test ! -e "$work/left/a"
wait_for "the list is up to date" row_is_gone "$left" a

# Onto another instance's empty space, and with Ctrl, pressed only there.
select_rows "$left" b
read -ra place <<<"$(below_rows "$right" sub)"
drag_begin "$left" b
drag_over move "${place[@]}"
drag_end
wait_for "dropped on empty space it is moved there" holds "$work/right/b" b
wait_for "its source is gone" test ! -e "$work/left/b"
wait_for "the other list shows it" row_is_there "$right" b
select_rows "$left" c d
drag_begin "$left" c
drag_over move "${place[@]}"
xdotool keydown ctrl
drag_over copy "${place[@]}"
drag_end
xdotool keyup ctrl
wait_for "with Ctrl it is copied" holds "$work/right/c" c
wait_for "all that is selected is copied" holds "$work/right/d" d
holds "$work/left/c" c || fail "a copy leaves its source"
wait_for "the copies are listed" row_is_there "$right" d

# It is done what the pointer showed as the button was let go, whatever is held when the other one comes to it.
late() {
    kill -STOP "$right"
    drag_end
    xdotool "$1" ctrl
    kill -CONT "$right"
}
select_rows "$left" e
drag_begin "$left" e
xdotool keydown ctrl
drag_over copy "${place[@]}"
late keyup
wait_for "the pointer showed a copy" holds "$work/right/e" e
holds "$work/left/e" e || fail "a copy that comes late leaves its source"
wait_for "the copy is listed" row_is_there "$right" e
select_rows "$left" f
drag_begin "$left" f
drag_over move "${place[@]}"
late keydown
wait_for "the pointer showed a move" test ! -e "$work/left/f"
xdotool keyup ctrl
wait_for "it is there" holds "$work/right/f" f
wait_for "it is listed" row_is_there "$right" f

# Onto rows of the other instance.
select_rows "$left" e
drag_rows "$left" e "$right" sub
wait_for "dropped on the other's directory" holds "$work/right/sub/e" e
wait_for "its source is gone" test ! -e "$work/left/e"
select_rows "$right" b
drag_rows "$right" b "$right" ..
wait_for "dropped on the parent row it goes up" holds "$work/b" b

# A directory onto itself, here and in another instance that shows it: nothing moves, nothing asks.
wait_for "the move up is listed" row_is_gone "$right" b
select_rows "$left" sub
read -ra place <<<"$(row_place "$left" sub)"
drag_begin "$left" sub
drag_over_nothing "$left" "${place[@]}"
drag_end
tav_focus "$right"
keys Home Return
wait_for "the other one shows the parent" tav_shows "$work" "$right"
mkdir "$work/left/sub/deep"
select_rows "$left" sub
read -ra place <<<"$(row_place "$right" left)"
drag_begin "$left" sub
drag_over move "${place[@]}" # another one's files are known only when they are dropped
drag_end
select_rows "$left" c sub
[ -d "$work/left/sub/deep" ] || fail "the directory moved"
no_window_named "File Scan" || fail "there is a complaint"

# Escape gives a drag up.
select_rows "$left" c
read -ra place <<<"$(row_place "$right" right)"
drag_begin "$left" c
drag_over move "${place[@]}"
xdotool key Escape # clearing the modifiers would let go of the button
drag_end
select_rows "$left" c
holds "$work/left/c" c || fail "a drag that was given up moved something"

for pid in "$left" "$right"; do
    tav_close "$pid"
    tav_status "$pid"
    expect 0 "$tav_exit" "exit status"
done
