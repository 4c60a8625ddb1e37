// Fetching the clipboard's forms from an X server over a connection of its own, so that any thread
// may wait for the program that owns them. Knows no Qt.
#pragma once

#include "commands/transf_take.h"

#include <atomic>

namespace tav {

constexpr int CLIP_X11_WAIT_MS = 5000; // for each answer of the owner

// The forms that the owner of the clipboard offers, the best one (and its mark) only. 0, or -1 when
// there is no server, nobody owns the clipboard, the owner does not answer, offers none of them,
// sends more than a form may have, or cancel was set meanwhile. display: as DISPLAY has it, null
// for that.
int clip_x11_fetch(const char *display, const std::atomic<bool> &cancel, TransfForms &forms);

} // namespace tav
