// A short-lived detached thread. Knows no Qt.
#pragma once

#include <functional>
#include <pthread.h>

namespace tav {

// Bytes, in ordinary builds.
constexpr size_t WORKER_STACK_SIZE = 65536;        // our own work
constexpr size_t WORKER_STACK_LARGE = 1024 * 1024; // a library's, whose need we do not know

// Runs work on a detached thread that sees no signal, with a stack of that size; it begins at once
// where another processor is idle. 0, or -1 with errno when it cannot start.
int worker_start(std::function<void()> work, size_t stack = WORKER_STACK_SIZE);

// What makes the thread; tests put one in its place that refuses.
extern decltype(&pthread_create) gWorkerCreate;

// How many of them have not ended yet; for tests.
int worker_count();

} // namespace tav
