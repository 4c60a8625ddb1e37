#!/bin/bash
# Three instances share the clipboard: what one cuts is marked in every window that shows it, and moved by
# whichever pastes; the marks go when somebody else takes the clipboard; names leave a cut as they are moved.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"
# shellcheck source=tests/desktop/clip.sh
source "$(dirname "$0")/clip.sh"

desktop_start
desktop_bus
odd=$'o d%&\xff'
mkdir -p "$work"/{src,dst}
for name in a b c d; do echo "$name of src" >"$work/src/$name"; done
echo odd >"$work/src/$odd"
tav_open first "$work/src"
tav_open second "$work/dst"
tav_open third "$work/src"
# shellcheck disable=SC2154 # set by tav_open
readonly first second third

# Cutting marks at once and everywhere; a copy of something else takes the marks away.
select_rows "$first" a b
keys ctrl+x
for pid in "$first" "$third"; do
    wait_for "a is marked in $pid" row_is_cut "$pid" a
    wait_for "b is marked in $pid" row_is_cut "$pid" b
    wait_for "c is not marked in $pid" row_is_plain "$pid" c
done
wait_for "a cut clears the selection" selected_are "$first" ""
select_rows "$first" c
keys ctrl+c
for pid in "$first" "$third"; do
    wait_for "a is no longer marked in $pid" row_is_plain "$pid" a
    wait_for "b is no longer marked in $pid" row_is_plain "$pid" b
done
paste_into "$second"
wait_for "c was copied" holds "$work/dst/c" "c of src"
holds "$work/src/c" "c of src" || fail "a copy leaves its source"

# Every form that other programs ask for.
odd_shown=$(look "$first" | sed -n 's/^ *list item "\(o d[^"]*\)".*/\1/p')
select_rows "$first" a "$odd_shown"
keys ctrl+x
uris="file://$work/src/a\\r\\nfile://$work/src/o%20d%25%26%FF\\r\\n"
wait_for "the URIs" form_is text/uri-list "$uris"
form_is x-special/gnome-copied-files "cut\\nfile://$work/src/a\\nfile://$work/src/o%20d%25%26%FF" ||
    fail "the GNOME form: $(form x-special/gnome-copied-files)"
form_is application/x-kde-cutselection 1 || fail "the KDE mark of a cut"
form_is text/plain "$work/src/a\\n$work/src/o d%&\\xff" || fail "the paths as they are: $(form text/plain)"
form_is UTF8_STRING "$work/src/a\\n$work/src/o d%&\\xff" || fail "the text: $(form UTF8_STRING)"
select_rows "$first" a
keys ctrl+c
wait_for "the GNOME form of a copy" form_is x-special/gnome-copied-files "copy\\nfile://$work/src/a"
form_is application/x-kde-cutselection 0 || fail "the KDE mark of a copy"

# A cut is moved by the instance that pastes, and the clipboard is empty then.
select_rows "$first" "$odd_shown"
keys ctrl+x
wait_for "the third one shows it" row_is_cut "$third" "$odd_shown"
paste_into "$second"
wait_for "the odd name was moved" holds "$work/dst/$odd" odd
wait_for "its source is gone" test ! -e "$work/src/$odd"
wait_for "the clipboard is empty after a move" clipboard_is_empty
paste_into "$second" # nothing happens
keys_are_done "$second"

# Pasting where the files are does nothing.
select_rows "$first" a
keys ctrl+x
wait_for "a is marked" row_is_cut "$first" a
keys ctrl+v
keys_are_done "$first"
row_is_cut "$first" a >/dev/null || fail "a is no longer marked"

# Another program takes the clipboard: every mark goes.
put_form text/plain words
for pid in "$first" "$third"; do
    wait_for "no mark is left in $pid" row_is_plain "$pid" a
done

# A move that waits for an answer leaves the cut as it is; what is moved leaves it, what is skipped stays.
echo old >"$work/dst/a"
select_rows "$first" a b d
keys ctrl+x
wait_for "d is marked" row_is_cut "$third" d
paste_into "$second"
wait_for "the question stands" find_windows --onlyvisible --name '^Move$'
wait_for "a is marked while it waits" row_is_cut "$third" a
window_focus Move
keys alt+s
wait_for "b was moved" holds "$work/dst/b" "b of src"
wait_for "d was moved" holds "$work/dst/d" "d of src"
wait_for "what was skipped is cut still" form_is x-special/gnome-copied-files "cut\\nfile://$work/src/a"
holds "$work/src/a" "a of src" || fail "what was skipped stays"
holds "$work/dst/a" old || fail "what was skipped is left alone"
wait_for "it is marked still" row_is_cut "$third" a
wait_for "what was moved is gone" row_is_gone "$third" b

# Clearing after a move leaves a clipboard alone that holds something else by then.
rm "$work/dst/c"
select_rows "$first" a c
keys ctrl+x
wait_for "c is marked" row_is_cut "$third" c
paste_into "$second"
wait_for "the question stands" find_windows --onlyvisible --name '^Move$'
put_form text/plain "other words"
window_focus Move
keys alt+o
wait_for "a was moved" holds "$work/dst/a" "a of src"
wait_for "c was moved" holds "$work/dst/c" "c of src"
wait_for "nothing runs any more" row_is_gone "$first" a
form_is text/plain "other words" || fail "the words were taken off the clipboard: $(form text/plain)"

# A cut lasts as long as its program; without it there is nothing to paste.
echo e >"$work/src/e"
for pid in "$first" "$third"; do
    tav_refresh "$pid"
    wait_for "e is listed" row_is_there "$pid" e
done
select_rows "$first" e
keys ctrl+x
wait_for "e is marked" row_is_cut "$third" e
tav_close "$first"
tav_status "$first"
expect 0 "$tav_exit" "exit status of the first one"
wait_for "its cut went with it" row_is_plain "$third" e
for pid in "$second" "$third"; do
    tav_close "$pid"
    tav_status "$pid"
    expect 0 "$tav_exit" "exit status"
done
