// Fetching the files on the clipboard from an X server over a connection of its own, so that any
// thread may wait for the program that owns them. Knows no Qt.
#pragma once

#include "commands/transf_take.h"

#include <atomic>
#include <cstdint>

namespace tav {

constexpr int CLIP_X11_WAIT_MS =
    5000; // for each answer of the owner; after a late one none is asked
constexpr int CLIP_X11_TOTAL_MS = 60000; // for all of them, an owner that dribbles included

constexpr int CLIP_X11_SILENT = -2;

// Where the server passes a note to when a fetch is over. The connection that made the window gets
// it behind the news of whatever happened to the clipboard meanwhile.
struct ClipX11Note {
    uint32_t window; // 0: nobody wants one
    uint32_t number; // what the client message holds
    bool sent;       // by clip_x11_fetch
};

// The files that the owner of the clipboard offers. 0; -1 when there is no server, nobody owns the
// clipboard, the owner offers none, sends more than a form may have, or cancel was set meanwhile;
// CLIP_X11_SILENT when the owner does not answer in time. display: as DISPLAY has it, null for
// that.
int clip_x11_fetch(const char *display, const std::atomic<bool> &cancel, TransfFiles &files,
                   ClipX11Note &note);

} // namespace tav
