// Signals in the main loop: a handler here runs as an ordinary function between events, through a
// self-pipe; while a directory is read it waits (see ui_gate, which must be open). Several arrivals
// of one signal that still waits count as one. Workers never see a signal (platform/worker).
//
// Children: exec gives a routed signal its default back by itself, but an ignored one (SIGPIPE)
// stays ignored and a blocked one blocked. Whoever starts a program therefore sets SIGPIPE to its
// default and empties the mask in the child (posix_spawnattr_setsigdefault and _setsigmask).
#pragma once

#include <functional>
#include <initializer_list>

namespace tav {

// Routes the signals to handler, on the main thread, also those that were blocked when the program
// was started; a later handler of the same signal replaces it. 0, or -1 with errno when one of them
// cannot be caught or must be left alone (faults, job control, SIGCHLD); none is routed then.
int signals_add(std::initializer_list<int> set, const std::function<void(int signal)> &handler);

// Ignores a signal from now on (SIGPIPE: a write to a closed pipe then fails instead of ending us).
void signals_ignore(int signal);

} // namespace tav
