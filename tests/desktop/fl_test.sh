#!/bin/bash
# The file list of the real program, as a person's mouse and keys and a screen reader meet it.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

dir=$work/docs
mkdir -p "$dir/sub/inner"
touch "$dir/apple" "$dir/banana" "$dir/cherry" "$dir/date"
desktop_start
desktop_bus
tav_start "$dir"
tav_ready "$dir"

# Names of the rows that are selected, joined by blanks.
selected() { look | sed -n 's/^ *list item "\([^"]*\)".*\[selected\].*/\1/p' | paste -sd ' '; }
focused() { look | sed -n 's/^ *list item "\([^"]*\)".*\[focused\].*/\1/p'; }
is_selected() { [ "$(selected)" = "$1" ]; }
is_focused() { [ "$(focused)" = "$1" ]; }

wait_for "a screen reader sees the rows" look_has 'list item "banana"'
wait_for "the cursor is on the first entry" is_focused apple

keys Down
wait_for "Down selects the next entry" is_selected banana
keys shift+Down shift+Down
wait_for "Shift extends" is_selected "banana cherry date"
keys ctrl+Up space
wait_for "Ctrl moves, Space toggles" is_selected "banana date"
keys Home
wait_for "Home goes to the first row" is_focused ..
keys End
wait_for "End goes to the last row" is_selected sub
keys Return
wait_for "Enter opens a directory" tav_shows "$dir/sub"
keys Home Return
wait_for "Enter on the first row goes up" tav_shows "$dir"
wait_for "the directory just left is selected" is_selected sub

# Where the list's rows begin on the screen, and how high they are.
read -r left top height < <(/usr/bin/python3 - "$tav_pid" <<'EOF'
import sys
import pyatspi

def find(node, name):
    if node.getRole() == pyatspi.ROLE_LIST_ITEM and node.name == name:
        return node
    for i in range(min(node.childCount, 50)):
        found = find(node.getChildAtIndex(i), name)
        if found:
            return found
    return None

for application in pyatspi.Registry.getDesktop(0):
    if application.get_process_id() == int(sys.argv[1]):
        area = find(application, "..").queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        print(area.x, area.y, area.height)
EOF
)

# The pointer over a row, 0 the first.
over() { xdotool mousemove $((left + ${2:-60})) $((top + $1 * height + height / 2)); }

over 2
xdotool click 1
wait_for "a click selects" is_selected banana
over 4
xdotool keydown ctrl click 1 keyup ctrl
wait_for "a click with Ctrl adds" is_selected "banana date"
over 1
xdotool mousedown 1
over 2
over 3
xdotool mouseup 1
wait_for "a drag over rows selects them" is_selected "apple banana cherry"
over 8
xdotool mousedown 1
over 7 90
over 4 120
xdotool mouseup 1
wait_for "a band from empty space selects what it meets" is_selected "date sub"
over 8
xdotool click 1
wait_for "a click on empty space unselects" is_selected ""
over 5
xdotool click --repeat 2 --delay 80 1
wait_for "a double click opens" tav_shows "$dir/sub"

mkdir "$dir/sub/later"
kill -WINCH "$tav_pid"
wait_for "a refresh from outside shows what is new" look_has 'list item "later"'
rm -r "$dir/sub"
kill -WINCH "$tav_pid"
shows_no_entry() { look_has 'list item ".."' && ! look_has 'list item "inner"'; }
wait_for "a directory that is gone shows as empty" shows_no_entry
keys alt+x
tav_status
expect 0 "$tav_exit" "exit status"
