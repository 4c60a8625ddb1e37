#!/usr/bin/env bash
# The settings directory and what is kept in it: written on leaving, read at the next start, and left alone
# where that is not possible.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

config() { echo "$HOME/.ph/tav/config.003"; }
first_error() { grep -m 1 '^TAV error' "$work/tav.$tav_count.err"; }

# starts tav in a home of that name, waits for its window, leaves it.
round() {
    export HOME=$1
    tav_start "$work"
    tav_ready "$work"
    tav_quit
}

test_written_and_read_again() {
    round "$work/home"
    expect 4668 "$(stat -c %s "$(config)")" "size of the settings"
    expect 700 "$(stat -c %a "$HOME/.ph/tav")" "mode of the settings directory"
    expect '*' "$(cat "$HOME/.ph/tav/fspec.001")" "filter history of a first start"
    local name
    for name in goto pattern hotlist; do
        [ -e "$HOME/.ph/tav/$name.001" ] || fail "no $name.001"
    done
    for name in with copy; do
        [ ! -e "$HOME/.ph/tav/$name.001" ] || fail "$name.001 is never written"
    done
    tav_start "$work"
    tav_ready "$work"
    xdotool windowsize --sync "$(tav_window)" 900 600
    wait_for "the window is larger" tav_has_size 900x600
    tav_quit
    tav_start "$work"
    wait_for "the size is there again" tav_has_size 900x600
    tav_quit
    cp "$(config)" "$work/before"
    round "$HOME"
    cmp "$(config)" "$work/before" || fail "looking changed the settings"
}

test_ph_is_missing() {
    mkdir "$work/bare"
    round "$work/bare"
    expect "TAV error: unable to create config directory $HOME/.ph/tav" "$(first_error)" "create message"
    expect 1 "$(grep -c 'TAV error' "$work/tav.$tav_count.err")" "how often it was said"
    expect "" "$(ls -A "$HOME")" "what was written"
}

test_settings_path_is_a_file() {
    mkdir -p "$work/filehome/.ph"
    echo kept >"$work/filehome/.ph/tav"
    round "$work/filehome"
    expect "TAV error: unable to access config directory $HOME/.ph/tav" "$(first_error)" "access message"
    expect kept "$(cat "$HOME/.ph/tav")" "the file"
}

test_settings_path_is_not_writable() {
    mkdir -p "$work/ro/.ph/tav"
    chmod 555 "$work/ro/.ph/tav"
    export HOME=$work/ro
    tav_start_refused /tmp
    tav_ready /tmp
    tav_quit
    chmod 700 "$work/run"
    grep -qxF "TAV error: unable to access config directory $HOME/.ph/tav" "$work/tav.$tav_count.err" ||
        fail "no access message"
    chmod 755 "$work/ro/.ph/tav"
    expect "" "$(ls -A "$HOME/.ph/tav")" "what was written"
}

# HOME unset or empty means /.ph/tav, which is not there; nothing is read or written in the working directory.
test_no_home() {
    [ ! -e /.ph ] || return 0
    mkdir "$work/nohome"
    cd "$work/nohome"
    local home=$HOME
    for HOME in unset ''; do
        [ "$HOME" != unset ] || unset HOME
        tav_start .
        tav_ready "$work/nohome"
        tav_quit
        expect "TAV error: unable to create config directory /.ph/tav" "$(first_error)" "create message"
        expect "" "$(ls -A "$work/nohome")" "what was written to the working directory"
    done
    export HOME=$home
    cd /
}

# A home given by a relative path stays where it was when the list goes elsewhere.
test_relative_home() {
    mkdir -p "$work/relative/home/.ph"
    cd "$work/relative"
    local home=$HOME
    HOME=home tav_start "$work"
    tav_ready "$work"
    keys F6
    wait_for "Home shows it" active_is "$work/relative/home - TAV"
    tav_quit
    export HOME=$home
    expect 4668 "$(stat -c %s "$work/relative/home/.ph/tav/config.003")" "size of the settings"
    [ ! -e "$work/home/home" ] || fail "settings were written where the list stood"
    cd /
}

# Histories that nobody would type: each is read as far as it makes sense and kept.
test_strange_histories() {
    local dir=$work/strange/.ph/tav
    mkdir -p "$dir"
    head -c 10000000 /dev/zero | tr '\0' a >"$dir/goto.001"
    printf 'a*\0lost\nb*\n' >"$dir/pattern.001"
    printf '*.txt\n*' >"$dir/fspec.001"
    round "$work/strange"
    expect 20 "$(wc -l <"$dir/goto.001")" "pieces kept of a line of 10 MB"
    expect 1022 "$(wc -L <"$dir/goto.001")" "length of a piece"
    expect $'a*\nb*' "$(cat "$dir/pattern.001")" "patterns"
    expect $'*.txt\n*' "$(cat "$dir/fspec.001")" "filters"
}

# A record of random bytes is believed in nothing, and what it says is not "corrected" on the disk.
test_random_settings() {
    mkdir -p "$work/random/.ph/tav"
    head -c 4668 /dev/urandom >"$work/random/.ph/tav/config.003"
    printf '\xFF' | dd of="$work/random/.ph/tav/config.003" bs=1 seek=4659 conv=notrunc status=none # no older one
    cp "$work/random/.ph/tav/config.003" "$work/before"
    head -c 100000 /dev/urandom >"$work/random/.ph/tav/goto.001"
    head -c 100000 /dev/urandom >"$work/random/.ph/tav/fspec.001"
    head -c 100000 /dev/urandom >"$work/random/.ph/tav/pattern.001"
    round "$work/random"
    cmp "$(config)" "$work/before" || fail "the settings were changed"
}

desktop_start
test_written_and_read_again
test_ph_is_missing
test_settings_path_is_a_file
test_settings_path_is_not_writable
test_no_home
test_relative_home
test_strange_histories
test_random_settings
