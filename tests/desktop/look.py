#!/usr/bin/python3
"""Prints what assistive technology sees of a running program: one line per visible widget, indented by
depth: ROLE "NAME" ["TEXT"] [STATES]. Usage: look.py PID

With names behind it: where the middle of the first thing of that name is on the screen, as "X Y"; each
further name is sought in what the one before it names. With --left before them a point near its left end."""

import sys

import pyatspi

STATES = ((pyatspi.STATE_FOCUSED, "focused"), (pyatspi.STATE_CHECKED, "checked"),
          (pyatspi.STATE_SELECTED, "selected"))
TIMEOUT_MS = 10000  # for each answer of the program, which a busy machine may keep waiting
ROWS_MOST = 200  # children shown of a table or list


def text_of(node):
    try:
        return node.queryText().getText(0, -1)
    except NotImplementedError:
        return ""


def show(node, depth):
    states = node.getState()
    if not states.contains(pyatspi.STATE_VISIBLE) and depth > 0:
        return
    line = f'{"  " * depth}{node.getRoleName()} "{node.name}"'
    text = text_of(node)
    if text and text != node.name:
        line += f' "{text}"'
    if node.getRole() == pyatspi.ROLE_LIST_ITEM and node.description:
        line += f" ({node.description})"
    marks = [name for state, name in STATES if states.contains(state)]
    if not states.contains(pyatspi.STATE_ENABLED) and not states.contains(pyatspi.STATE_SENSITIVE):
        marks.append("disabled")
    print(line + "".join(f" [{mark}]" for mark in marks))
    for i in range(min(node.childCount, ROWS_MOST)):
        child = node.getChildAtIndex(i)
        if child is not None:
            show(child, depth + 1)


def find(node, name):
    if node.name == name and node.getState().contains(pyatspi.STATE_VISIBLE):
        return node
    for i in range(min(node.childCount, ROWS_MOST)):
        child = node.getChildAtIndex(i)
        found = find(child, name) if child is not None else None
        if found is not None:
            return found
    return None


NEAR_LEFT = 60  # pixels from the left end of a thing


def show_place(application, names, left):
    node = application
    for name in names:
        node = find(node, name)
        if node is None:
            return 1
    box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    print(box.x + (NEAR_LEFT if left else box.width // 2), box.y + box.height // 2)
    return 0


def main():
    pyatspi.setTimeout(TIMEOUT_MS, TIMEOUT_MS)
    pid = int(sys.argv[1])
    desktop = pyatspi.Registry.getDesktop(0)
    for application in desktop:
        if application is not None and application.get_process_id() == pid:
            if len(sys.argv) > 2:
                left = sys.argv[2] == "--left"
                return show_place(application, sys.argv[3 if left else 2:], left)
            show(application, 0)
            return 0
    return 1


if __name__ == "__main__":
    sys.exit(main())
