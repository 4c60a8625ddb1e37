#!/bin/bash
# Files are dragged between tav and other programs, both ways, copied and moved: with one made for this test, which
# offers only copying and takes everything as a move, and with file managers of GTK and of Qt where they are
# installed.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"
# shellcheck source=tests/desktop/clip.sh
source "$(dirname "$0")/clip.sh"

desktop_start 1280x900x24
desktop_bus
mkdir -p "$work"/{ours/sub,theirs}
for name in a b c d e; do echo "$name" >"$work/ours/$name"; done
tav_open tav "$work/ours"
tav_place "$tav" 640 0 620 700
# shellcheck disable=SC2154 # set by tav_open
readonly tav
is_right() { [ "$(row_place "$1" .. | cut -d' ' -f1)" -gt 640 ]; }
wait_for "the window stands to the right" is_right "$tav"
read -ra empty <<<"$(row_place "$tav" a)"
empty[1]=$((empty[1] + 450)) # where no row is
ours() { wait_for "$1" holds "$work/ours/$2" "$2" && wait_for "$2 is listed" row_is_there "$tav" "$2"; }

# What the pointer shows, learned from a drag that moves.
read -ra place <<<"$(row_place "$tav" sub)"
select_rows "$tav" a
drag_begin "$tav" a
drag_learn "${place[@]}"
drag_end
wait_for "the first one is moved" holds "$work/ours/sub/a" a
wait_for "it is listed no more" row_is_gone "$tav" a

# A program of our own. partner OFFERS TAKES FILE: its drag holds that one.
partner() {
    echo "file://$3" >"$work/uris"
    "$(dirname "$TAV")/tests/dnd_partner" "$1" "$2" "text/uri-list=$work/uris" >"$work/partner" 2>&1 &
    partner_pid=$!
    pids+=("$partner_pid")
    wait_for "the partner is there" window_named partner
    wmctrl -F -r partner -e 0,100,500,200,150
    wait_for "it is in its place" partner_is_placed
}
partner_is_placed() { find_windows --onlyvisible --name '^partner$' getwindowgeometry | grep 'Position: 10.,5[0-9][0-9]'; }
partner_end() {
    kill "$partner_pid"
    wait_for "the partner is gone" no_window_named partner
}
partner_said() { grep -Fx "$1" "$work/partner"; }
partner_drags() {
    xdotool mousemove 200 580 mousedown 1 mousemove 210 590 mousemove 230 600
    drag_over "$1" "${empty[@]}"
    drag_end
}

echo only >"$work/theirs/only"
partner copy move "$work/theirs/only"
partner_drags copy
ours "what may only be copied is copied" only
wait_for "and was" partner_said "told copy"
holds "$work/theirs/only" only || fail "a copy leaves its source"

# A drag that another program ends as a move: it has the names, what it does with them is its own affair.
select_rows "$tav" b c
drag_begin "$tav" b
drag_over move 200 600
drag_end
wait_for "the partner took it as a move" partner_said "dropped move"
wait_for "it got the names" partner_said "file://$work/ours/b"$'\r'
tav_focus "$tav"
keys_are_done "$tav"
tav_refresh "$tav"
keys_are_done "$tav"
for name in b c; do
    holds "$work/ours/$name" "$name" || fail "a file was deleted for another program's sake"
    row_is_there "$tav" "$name" >/dev/null || fail "$name is listed no more"
done
partner_end

# What we carry out as a move is a copy to its source.
echo both >"$work/theirs/both"
partner both copy "$work/theirs/both"
partner_drags move
ours "what may be moved is moved" both
wait_for "its source is gone" test ! -e "$work/theirs/both"
wait_for "the source is told of a copy" partner_said "told copy"
partner_end
echo ctrl >"$work/theirs/ctrl"
partner both copy "$work/theirs/ctrl"
xdotool keydown ctrl
partner_drags copy
xdotool keyup ctrl
ours "with Ctrl it is copied" ctrl
holds "$work/theirs/ctrl" ctrl || fail "a copy with Ctrl leaves its source"
partner_end

# Other file managers. Where the one file of the view is: there something changes as everything is selected.
other_raise() {
    no_job_runs && wmctrl -F -a "$theirs" && [ "$(xdotool getactivewindow getwindowname)" = "$theirs" ] &&
        xdotool mousemove 500 300 click 1
}
other_item() {
    other_raise || return 1
    import -silent -window root -crop 465x240+155+90 +repage "$work/before.png"
    keys ctrl+a
    import -silent -window root -crop 465x240+155+90 +repage "$work/after.png"
    item=$(convert "$work/before.png" "$work/after.png" -compose difference -composite -threshold 8% -trim \
        -format '%w %h %X %Y' info:)
    read -ra item <<<"$item"
    [ "${item[0]}" -gt 4 ] && [ "${item[0]}" -lt 150 ] || return 1
    item=($((155 + item[2] + item[0] / 2)) $((90 + item[3] + item[1] / 2)))
}
# other_drags: from its view to the empty space of our list, with the key held there.
other_drags() {
    local seen
    wait_for "its file is found" other_item
    xdotool mousemove "${item[@]}"
    seen=("$(pointer)")
    xdotool mousedown 1 mousemove $((item[0] + 10)) $((item[1] + 10)) mousemove $((item[0] + 20)) $((item[1] + 20))
    look "$tav" >"$work/noticed"
    seen+=("$(pointer)")
    xdotool mousemove 600 880 # where no window is
    look "$tav" >"$work/noticed"
    seen+=("$(pointer)")
    xdotool mousemove "${empty[0]}" $((empty[1] + 3))
    if [ "$program" = pcmanfm-qt ]; then # has the pointers that we have
        drag_over move "${empty[@]}"
        [ -z "$held" ] || { xdotool keydown "$held" && drag_over copy "${empty[@]}"; }
        drag_end
        [ -z "$held" ] || xdotool keyup "$held"
        return
    fi
    seen+=("$(pointer --not "${seen[@]}")") || fail "$program shows not that it may be dropped"
    if [ -n "$held" ]; then
        xdotool keydown "$held"
        pointer --not "${seen[@]}" >"$work/noticed" || fail "$program shows not what $held does"
    fi
    xdotool mousemove "${empty[@]}"
    look "$tav" >"$work/noticed"
    drag_end
    [ -z "$held" ] || xdotool keyup "$held"
}
# other_gets SHOWN NAME: from our list to its view. It asks for the names first and decides as the pointer moves on.
other_gets() {
    select_rows "$tav" "$2"
    drag_begin "$tav" "$2"
    [ -z "$held" ] || xdotool keydown "$held" # until the file is there: it may look only then
    drag_over "$1" 500 300
    drag_end
}

# Its menu stands where the file was dropped; the mouse goes to its second item.
other_asks() {
    local outside
    xdotool mousemove 300 300
    outside=$(xdotool getmouselocation --shell | grep WINDOW)
    xdotool mousemove 540 338
    [ "$(xdotool getmouselocation --shell | grep WINDOW)" != "$outside" ]
}

for program in pcmanfm pcmanfm-qt; do
    command -v "$program" >/dev/null || continue
    theirs=theirs_$program
    mkdir -p "$work/$theirs"
    echo from >"$work/$theirs/from"
    option=--no-desktop
    [ "$program" = pcmanfm ] || option=--new-window
    setsid "$program" "$option" "$work/$theirs" >"$work/$program.out" 2>&1 &
    other=$!
    pids+=("$other")
    wait_for "$program is there" window_named "$theirs"
    wmctrl -F -r "$theirs" -e 0,0,0,620,400

    held=ctrl
    other_drags
    ours "copied from $program with Ctrl" from
    holds "$work/$theirs/from" from || fail "$program's file is gone"
    rm "$work/ours/from"
    tav_refresh "$tav"
    wait_for "it is taken away again" row_is_gone "$tav" from
    held=
    other_drags
    wait_for "moved from $program" test ! -e "$work/$theirs/from"
    ours "and is here" from

    held=ctrl
    other_gets copy e
    wait_for "copied by $program with Ctrl" holds "$work/$theirs/e" e
    xdotool keyup ctrl
    holds "$work/ours/e" e || fail "our file is gone"
    held=
    other_gets move d
    if [ "$program" = pcmanfm-qt ]; then
        wait_for "it asks what to do" other_asks
        xdotool click 1
    fi
    wait_for "moved by $program" holds "$work/$theirs/d" d
    wait_for "our file is gone" test ! -e "$work/ours/d"
    # One of them asks with a time far ahead: what we copy afterwards reaches the clipboard all the same.
    select_rows "$tav" b
    keys ctrl+c
    wait_for "a copy reaches the clipboard" form_is text/uri-list "file://$work/ours/b\\r\\n"
    echo d >"$work/ours/d"
    rm "$work/ours/from"
    tav_refresh "$tav"
    wait_for "our list is as it was" row_is_gone "$tav" from
    wmctrl -F -c "$theirs"
    wait_for "$program is gone" no_window_named "$theirs"
    exchanged="${exchanged-} $program"
done

tav_quit
echo "exchanged with:${exchanged- no other file manager is installed}"
