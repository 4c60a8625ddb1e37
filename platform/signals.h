// Signals in the main loop: a handler here runs as an ordinary function between events, through a
// self-pipe; while a directory is read it waits (see ui_gate). Workers never see a signal.
#pragma once

#include <functional>
#include <initializer_list>

namespace tav {

// Routes the signals to handler, on the main thread. 0, or -1 with errno when a signal cannot be caught.
int signals_add(std::initializer_list<int> set, std::function<void(int signal)> handler);

// Blocks, in the calling thread, every signal that is routed; a worker calls it first.
void signals_block_in_worker();

} // namespace tav
