// The progress window: one slot per running job, the newest on top. The main thread owns the window
// and the table; what it shares with the workers is the table's `removed` marks and job pointers,
// under one mutex, so that no job is touched after its end. Slots are filled by looking at the
// jobs' progress records now and then: a worker never waits for a repaint.
#pragma once

#include "fileops/fop.h"

#include <functional>

class QWidget;

namespace tav {

constexpr int SLOT_MAX = 50; // slots at a time
constexpr unsigned SLOT_TIMER_MS =
    100;                             // how often finished slots are removed and running ones shown
constexpr int SLOT_REDRAW_MS = 500;  // least time between two redraws of a slot
constexpr int SLOT_MAX_WIDTH = 1200; // of the window's contents
constexpr int SLOT_SCREEN_REST = 50; // of the screen's height, left free
constexpr int SLOT_SCROLL_BAR = 15;  // least room for the scroll bar

// The main window has been closed: the program ends when the last job has gone, and a refresh
// signal is ignored. 0 or 1.
extern int base_window_closed;

// Adds a slot, with the window when it is the first. False with errno: ENOMEM for a 51st.
bool slot_add(SlotWidgets &slot);

// Says which job a slot belongs to; null forgets it.
void slot_set_job(const void *pane, FileOp *job);

// Takes a slot down, with the window when it is the last. 0, or -1 when there is no such slot.
int slot_remove(const void *pane);

// Marks a slot for the timer to remove; from now on nobody touches its job. Any thread.
void slot_mark_removed(const void *pane);

// Makes the window fit its slots.
void resize_base();

// Removes marked slots, shows what changed, ends the program after the last job when it is to end.
void slot_timer();

int slot_cancel_cb(
    QWidget *button); // asks whether to end the operation, which stands still meanwhile
int slot_pause_cb(QWidget *button);

// The main window was closed: running jobs finish, then the program ends; at once when there is
// none.
void slot_finish_all();

// The program is to end now: every job is aborted, every question takes its closing answer.
void slot_terminate_all();

int slot_count();

// Runs f on the job of a slot while it is sure to be there. False when it has none any more.
bool slot_with_job(const void *pane, const std::function<void(FileOp &job)> &f);

// What the end of the program and the refresh of all instances do; tests put theirs here.
struct SlotHooks {
    void (*exit)();    // ends the main loop
    void (*refresh)(); // tells every instance to read its directory again
};
extern SlotHooks gSlotHooks;

} // namespace tav
