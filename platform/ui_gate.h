// The one gate between worker threads and the main thread, which owns all widgets and all model
// data. Functions handed over run on the main thread in the order in which they came, one at a
// time. While the gate is held (a directory is being read) they wait for its release; while one of
// them runs a nested loop the others wait for its end. Qt inside, none outside.
#pragma once

#include <functional>

namespace tav {

// Opens the gate; call once on the main thread, after the application object exists.
void ui_gate_open();

// Closes it for good: waiting and later ui_calls answer false, posted functions are dropped.
void ui_gate_close();

bool ui_gate_is_open(); // any thread

// Runs f on the main thread and waits for its end. False, without running it, when the gate is
// closed. From the main thread itself f runs at once. Any thread.
bool ui_call(const std::function<void()> &f);

// Runs f on the main thread later; dropped when the gate is closed by then. Any thread.
void ui_post(std::function<void()> f);

// Counted: while held, nothing that was handed over runs. Main thread.
void ui_gate_hold();
void ui_gate_release();

// Runs what waits now, as the main loop would; for tests and for the end of the program.
void ui_gate_drain();

} // namespace tav
