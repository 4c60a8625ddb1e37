#!/bin/bash
# Clipboards of other programs, good and bad: every form that is taken, long ones piece by piece, owners that
# do not answer. The window goes on meanwhile, and what comes later is taken as usual.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"
# shellcheck source=tests/desktop/clip.sh
source "$(dirname "$0")/clip.sh"

desktop_start
desktop_bus
mkdir -p "$work"/{src,more,dst,up/down}
for name in src/0 src/a src/b src/c src/d src/e src/x more/f; do echo "$name" >"$work/$name"; done
gnome=x-special/gnome-copied-files
kde=application/x-kde-cutselection
tav_open tav "$work/dst"
# shellcheck disable=SC2154 # set by tav_open
readonly tav

file() { printf '%b' "$2" >"$work/$1" && echo "$work/$1"; }

# comes TEXT NAME CONTENT: it is there, and the job at its end, which tells the list.
comes() {
    wait_for "$1" holds "$work/dst/$2" "$3"
    wait_for "it is listed" row_is_there "$tav" "${2##*/}"
}

# Each form alone.
put_form text/uri-list "file://$work/src/a\\r\\n"
paste_into "$tav"
comes "a URI list is copied" a src/a
holds "$work/src/a" src/a || fail "a URI list without a mark leaves the source"
put_form "$gnome" "copy\\nfile://localhost$work/src/b"
paste_into "$tav"
comes "the GNOME form is copied" b src/b
holds "$work/src/b" src/b || fail "a copy leaves the source"
put_form "$gnome" "cut\\nfile:$work/src/c\\nfile://$(uname -n)$work/more/f"
paste_into "$tav"
wait_for "the GNOME form is moved" test ! -e "$work/src/c"
wait_for "from each directory" test ! -e "$work/more/f"
comes "what was moved is there" c src/c
comes "from both directories" f more/f
wait_for "nothing is left on the clipboard" clipboard_is_empty

# The KDE mark beside a URI list; the GNOME form goes before both.
own "text/uri-list=$(file uris "file://$work/src/d\\r\\n")" "$kde=$(file mark 1)"
paste_into "$tav"
comes "marked as cut it is moved" d src/d
wait_for "its source is gone" test ! -e "$work/src/d"
wait_for "the clipboard is taken over to be emptied" owner_has_lost
own "text/uri-list=$(file uris "file://$work/src/e\\r\\n")" "$kde=$(file mark 0)" \
    "$gnome=$(file gnome "copy\\nfile://$work/src/x")"
paste_into "$tav"
comes "the GNOME form is taken" x src/x
! owner_is_asked text/uri-list || fail "a form that is not needed was asked for"

# A form of ours that is none counts as missing.
own "application/x-tav-files=$(file own 'TAVL\2\0\0\0files\0mv')" \
    "text/uri-list=$(file uris "file://$work/src/e\\r\\n")"
paste_into "$tav"
comes "the next form is taken" e src/e

# A long one comes piece by piece, both ways.
mkdir "$work/many" "$work/dst/many"
(cd "$work/many" && seq -f "a_rather_long_name_of_a_file_%06g" 4000 | xargs touch)
rm "$work"/dst/{a,b,c,d,e,f,x}
{ printf 'copy\n'; find "$work/many" -type f -printf 'file://%p\n'; } >"$work/pieces"
own "$gnome=$work/pieces"
tav_refresh "$tav"
wait_for "nothing else is left there" row_is_gone "$tav" x
keys Home Down Return
wait_for "an empty directory is shown" tav_shows "$work/dst/many"
paste_into "$tav"
count_is() { [ "$(find "$1" -type f | wc -l)" = "$2" ]; }
wait_for "all of them are copied" count_is "$work/dst/many" 4000
wait_for "they are listed" look_has 'a_rather_long_name_of_a_file_000001'
keys ctrl+a ctrl+c
same_as_sent() { [ "$(form text/uri-list | grep -c $'^file://.*\r$')" = 4000 ]; }
wait_for "another program gets all of them" same_as_sent

# 100 MB of URIs are refused, without a stop.
yes "file:///tmp/one_and_the_same_directory/one_and_the_same_name"$'\r' | head -c 100000000 >"$work/huge" || true
own "text/uri-list=$work/huge"
wait_for "it is asked for" owner_is_asked text/uri-list
keys_are_done "$tav" # 100 MB arrive
put_form text/uri-list "file://$work/src/a\\r\\n"

# Owners that answer nothing, or promise without giving, or dribble: the window goes on, and a paste that waits
# is not for what somebody else puts there next. That is told, and nothing is pasted.
told() { window_named Paste && look_has "$1"; }
rm "$work/dst/many/a_rather_long_name_of_a_file_000001"
for manner in --silent --no-data --dribble; do
    own "$manner" "text/uri-list=$work/uris" "$gnome=$work/gnome"
    wait_for "it is asked" grep -q asked "$work/owner"
    keys ctrl+v
    keys_are_done "$tav" # its owner is $manner
    keys ctrl+v          # again, for want of an answer
    put_form text/uri-list "file://$work/many/a_rather_long_name_of_a_file_000001\\r\\n"
    wait_for "it is told ($manner)" told "The clipboard changed before its files were known."
    keys Return
    wait_for "the box goes" no_window_named Paste
    keys_are_done "$tav"
done
own --silent "text/uri-list=$work/uris"
wait_for "it is asked" grep -q asked "$work/owner"
keys ctrl+v
wait_for "an owner without an answer is told of" told "The program that owns the clipboard does not answer."
keys Return
wait_for "the box goes" no_window_named Paste
# What comes to the clipboard right behind the key is not meant either, however late the program looks.
kill -STOP "$tav"
own "text/uri-list=$(file uris "file://$work/src/a\\r\\n")"
keys ctrl+v
own "text/uri-list=$(file uris "file://$work/many/a_rather_long_name_of_a_file_000001\\r\\n")"
kill -CONT "$tav"
wait_for "it is told" window_named Paste
keys Return
wait_for "the box goes" no_window_named Paste
wait_for "the later owner is asked" owner_is_asked text/uri-list
keys_are_done "$tav"
count_is "$work/dst/many" 3999 || fail "what came later was pasted"
put_form text/uri-list "file://$work/src/a\\r\\n"
paste_into "$tav"
comes "what comes next is taken as usual" many/a src/a

# What is no file is left out, and what is gone is told.
printf '%b\r\n' 'http://host/file' 'file:relative' '' "file://$work/src/d%00b" "file://$work/src/d%2Fb" \
    "file://elsewhere.example$work/src/b" "file://$work/src/.." 'file:///' "file://$work/src/0" >"$work/uris"
own "text/uri-list=$work/uris"
paste_into "$tav"
comes "a file among what is none is copied" many/0 src/0
count_is "$work/dst/many" 4001 || fail "something else was pasted"
rm "$work/src/b"
put_form text/uri-list "file://$work/src/b\\r\\n"
paste_into "$tav"
wait_for "a file that is gone is told" window_named 'File Scan'
keys Return
wait_for "that box goes" no_window_named 'File Scan'
put_form text/uri-list "file://$work/gone/with_its_directory\\r\\n"
paste_into "$tav"
wait_for "so is one whose directory is gone" window_named 'File Scan'
keys Return

# From more directories than may be worked on at a time: the others wait, and are all done.
for i in $(seq 60); do mkdir "$work/up/$i" && echo "$i" >"$work/up/$i/from$i"; done
find "$work/up" -name 'from*' -printf 'file://%p\r\n' >"$work/uris"
own "text/uri-list=$work/uris"
wait_for "it is asked" owner_is_asked text/uri-list
paste_into "$tav"
wait_for "it is told that some wait" window_named Copy/Move
pasted() { [ "$(find "$work/dst/many" -name 'from*' | wc -l)" = 60 ]; }
wait_for "all of them come" pasted
wait_for "the box goes by itself" no_window_named Copy/Move

wait_for "no job is running" no_job_runs
tav_quit
