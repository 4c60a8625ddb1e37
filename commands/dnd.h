// Dragging files out of the list and onto it, from and to this program and others. Filled into
// gFlHooks by app/base.cpp. Main thread only.
#pragma once

#include "commands/transf_take.h"

#include <Qt>
#include <string>

class QDropEvent;

namespace tav {

// The pointer left the list with the selection held: drags the selection until it is dropped.
void dnd_start();

// Whether what is dragged are files in a form that we take.
bool dnd_is_files(const QDropEvent &event);

// A drag of files is over the list; index is the entry under it. Sets the action that a drop would
// have, so that the pointer shows it, and says whether there would be one.
bool dnd_accepts(QDropEvent &event, int index);

// It was dropped on the directory or ".." of that index, or (DIR_NONE) on the list itself: starts
// the jobs, unless something else stands there than what dnd_accepts was asked about last.
void dnd_drop(QDropEvent &event, int index);

// Where a drop on that index goes; the shown directory for anything but a directory and "..".
std::string dnd_destination(int index);

// Whether one of the files is the destination, or a directory above it.
bool dnd_is_inside(const FileListRecord &list, const std::string &destination);

// For whoever wants to see what was dropped: with DND_SHOW among the flags selects the files in the
// list, puts the cursor on the last one and reads the directory again. Nothing calls it so far: the
// end of the job shows the files anyway.
constexpr unsigned DND_SHOW = 0x40;
void x_drop_complete_cb(const FileListRecord &list, unsigned flags);

// A copy with Ctrl held, else a move, as far as the source offers it.
Qt::DropAction dnd_action(Qt::KeyboardModifiers modifiers, Qt::DropActions possible);

} // namespace tav
