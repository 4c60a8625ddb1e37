// Slices of the main loop for long work on the main thread (reading a directory): painting,
// resizing and timers go on, Escape asks the work to stop, and everything that a user does
// meanwhile waits until the work has ended, so that nothing can start a second work inside the
// first. Main thread only.
//
// Kept, and delivered in its order after the end: keys, clicks on controls, the closing of a
// window, the keyboard's context menu. Dropped, because it means nothing any more: the wheel,
// moves, and clicks into contents that scroll (what was clicked at is about to change). A drop is
// refused at once, its data would not outlive the wait. Functions handed to ui_gate, signals
// included, wait as well.
#pragma once

class QWidget;

namespace tav {

// Begins. Mouse and keys go on inside allow (a stop button, null: nowhere). False, and nothing
// begins, when a work is under way already.
bool ui_slice_begin(QWidget *allow = nullptr);

// Runs the main loop for a moment when that is due (every UI_SLICE_EVERY ms); cheap enough to be
// called for every name. False as soon as Escape was pressed: stop. Who has to go on for a while
// (what was read is to be sorted) calls it further: the loop still runs.
bool ui_slice_run();

// Ends; what was kept is delivered from the main loop soon afterwards.
void ui_slice_end();

bool ui_slice_is_active();

constexpr int UI_SLICE_EVERY = 8;   // ms of work between two slices
constexpr int UI_SLICE_LONGEST = 8; // ms after which a slice begins no further event

} // namespace tav
