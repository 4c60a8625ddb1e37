#!/usr/bin/env bash
# What "cmake --install" puts where, and that it works from there: the menu entry's launcher makes the folder
# for the settings, the program finds the programs that come along and its pictures.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

root=$work/root
built=$(dirname "$TAV")

test_files_in_place() {
    DESTDIR=$root cmake --install "$built" --prefix /usr >"$work/install.log"
    local file
    for file in bin/tav bin/tav-start share/applications/tav.desktop share/metainfo/tav.metainfo.xml \
        share/man/man1/tav.1 share/icons/hicolor/scalable/apps/tav.svg share/doc/tav/{LICENSE,README.md,CHANGELOG.md} \
        libexec/tav/{common.sh,coreinfo,ped,phplay,pterm,pv,realplay,slay,voyager}; do
        [ -f "$root/usr/$file" ] || fail "not installed: $file"
    done
    for file in "$root"/usr/bin/* "$root"/usr/libexec/tav/*; do
        [ "${file##*/}" = common.sh ] || [ -x "$file" ] || fail "cannot be run: $file"
    done
    for file in Exec TryExec; do
        [ -x "$root/usr/bin/$(menu_entry $file | cut -d' ' -f1)" ] || fail "the menu entry's $file"
    done
    [ -f "$root/usr/share/icons/hicolor/scalable/apps/$(menu_entry Icon).svg" ] || fail "the menu entry's icon"
    ! readelf -d "$root/usr/bin/tav" | grep -E 'RPATH|RUNPATH' || fail "the program looks for libraries elsewhere"
}

menu_entry() { sed -n "s/^$1=//p" "$root/usr/share/applications/tav.desktop"; }

# The launcher in a home that has no .ph yet; a text file then opens in the user's editor by way of "ped",
# which only the installed folder of programs has.
test_launcher_and_programs() {
    export HOME=$work/newhome
    mkdir -p "$HOME" "$work/bin" "$work/docs"
    echo text >"$work/docs/letter.txt"
    printf '#!/bin/sh\necho "$*" >%s\n' "$work/edited" >"$work/bin/gedit"
    chmod +x "$work/bin/gedit"
    TAV=$root/usr/bin/tav-start PATH=$work/bin:$PATH EDITOR=gedit tav_start "$work/docs"
    tav_ready "$work/docs"
    keys Down Return
    wait_for "the editor is started" grep -q letter.txt "$work/edited"
    tav_quit
    expect 4668 "$(stat -c %s "$HOME/.ph/tav/config.003")" "size of the settings"
    expect "" "$(cat "$work/tav.$tav_count.err")" "what tav said"
}

# From the desktop's menu the launcher is found in PATH; without a home it starts tav all the same.
test_launcher_without_a_home() {
    cd "$work/docs"
    tav_count=$((tav_count + 1))
    env -u HOME PATH="$root/usr/bin:$PATH" tav-start >"$work/tav.$tav_count.out" 2>"$work/tav.$tav_count.err" \
        </dev/null &
    tav_pid=$!
    pids+=("$tav_pid")
    tav_ready "$work/docs"
    tav_quit
    cd /
}

desktop_start
test_files_in_place
test_launcher_and_programs
test_launcher_without_a_home
