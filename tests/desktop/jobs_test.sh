#!/usr/bin/env bash
# A person's copies and moves with the real program: the question in the way, the progress window's pause and
# cancel, the refresh of every instance, and the program's end after its last job.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/docs
bin=$work/bin
mkdir -p "$dir/to" "$bin"

# The refresh of all instances, written down.
cat >"$bin/slay" <<END
#!/bin/sh
echo "\$*" >>"$work/refreshes"
END
chmod +x "$bin/slay"
PATH=$bin:$PATH

# fill: three new files in docs, three old ones of the same names in its directory "to".
fill() {
    local name
    for name in a b c; do
        echo new >"$dir/$name"
        echo old >"$dir/to/$name"
    done
}

in_to() { cat "$dir/to/a" "$dir/to/b" "$dir/to/c" | paste -sd ' '; }
to_is() { [ "$(in_to)" = "$1" ]; }
selected() { look | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
is_selected() { [ "$(selected)" = "$1" ]; }
jobs_window() { find_windows --all --onlyvisible --pid "$tav_pid" --name '^TAV: File Operations$'; }
no_jobs_window() { ! jobs_window; }
asks() { look_has "The '$dir/to/$1' file exists."; }
asks_nothing() { ! look_has "file exists."; }
refreshed() { [ "$(wc -l <"$work/refreshes")" -gt "${1:-0}" ]; }
main_window() { find_windows --all --onlyvisible --pid "$tav_pid" --name ' - TAV$'; }
focus_main() { xdotool windowactivate "$(main_window)"; }
main_is_active() { [ "$(xdotool getactivewindow)" = "$(main_window)" ]; }

# paste_files KEY: selects the three files, takes them with that key, pastes them in "to", where a asks.
paste_files() {
    fill
    wait_for "the main window has the keyboard" eval 'focus_main; main_is_active'
    wait_for "docs are shown" tav_shows "$dir"
    keys Home Down shift+Down shift+Down
    wait_for "the files are selected" is_selected "a b c"
    keys "$1"
    keys End Return
    wait_for "the destination is shown" tav_shows "$dir/to"
    keys ctrl+v
    wait_for "the first existing file is asked about" asks a
    wait_for "the progress window is there" jobs_window
}

back_to_docs() {
    wait_for "the main window has the keyboard" eval 'focus_main; main_is_active'
    keys Home Return
    wait_for "docs are shown" tav_shows "$dir"
}

fill
desktop_start
desktop_bus
tav_start "$dir"
tav_ready "$dir"
wait_for "the list is there" look_has 'list item "c"'

# Pause, while the question stands: the answer is taken, but nothing more is done until it goes on.
paste_files ctrl+c
wait_for "the slot says that it waits" look_has 'push button "Answer..."'
click_on "TAV: File Operations" Pause
wait_for "the button is down" look_has 'check box "Pause" [focused] [checked]'
click_on "Overwrite All"
wait_for "the question is gone" asks_nothing
wait_for "the slot waits no more" eval '! look_has "push button \"Answer...\""'
expect "old old old" "$(in_to)" "a paused job"
click_on "TAV: File Operations" Pause
wait_for "all files are copied" to_is "new new new"
wait_for "the progress window goes with its last job" no_jobs_window
wait_for "the instances are told" refreshed 0
expect "-f -s SIGWINCH tav" "$(head -n 1 "$work/refreshes")" "the refresh"

# Cancel asks; No goes on as before, Yes ends the job and its question.
back_to_docs
paste_files ctrl+c
click_on "TAV: File Operations" Cancel
wait_for "cancelling asks" look_has "Do you want to terminate this operation ?"
click_on "File Operation" No
wait_for "the question stands still" asks a
click_on "TAV: File Operations" Cancel
wait_for "cancelling asks again" look_has "Do you want to terminate this operation ?"
click_on "File Operation" Yes
wait_for "the job's question goes with it" asks_nothing
wait_for "the progress window goes" no_jobs_window
expect "old old old" "$(in_to)" "a cancelled copy"

# Closing the progress window puts it away; the job goes on.
back_to_docs
paste_files ctrl+c
wmctrl -i -c "$(jobs_window)"
wait_for "the progress window is put away" no_jobs_window
click_on Skip
wait_for "the second file is asked about" asks b
click_on Overwrite
wait_for "the third file is asked about" asks c

# Closing the main window with a job running: the job finishes, then the program ends.
wmctrl -i -c "$(main_window)"
wait_for "the main window is closed" eval '! main_window'
tav_is_gone && fail "the program ended with a job running"
click_on Overwrite
tav_status
expect 0 "$tav_exit" "exit status"
expect "old new new" "$(in_to)" "what was answered"
