// Fetching the files on the clipboard from an X server over a connection of its own, so that any
// thread may wait for the program that owns them. Knows no Qt.
#pragma once

#include "commands/transf_take.h"

#include <atomic>

namespace tav {

constexpr int CLIP_X11_WAIT_MS =
    5000; // for each answer of the owner; after a late one none is asked
constexpr int CLIP_X11_TOTAL_MS = 60000; // for all of them, an owner that dribbles included

// The files that the owner of the clipboard offers. 0, or -1 when there is no server, nobody owns
// the clipboard, the owner does not answer in time, offers none, sends more than a form may have,
// or cancel was set meanwhile. display: as DISPLAY has it, null for that.
int clip_x11_fetch(const char *display, const std::atomic<bool> &cancel, TransfFiles &files);

} // namespace tav
