// A few detached threads that work off a queue. One that does not come back, because a disk hangs,
// is replaced while work waits, up to a limit. Knows no Qt.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>

namespace tav {

constexpr int POOL_WORKERS = 4;      // threads of a pool
constexpr int POOL_WORKERS_MAX = 32; // with those that hang
constexpr int POOL_HUNG_MS = 200;    // no work begun meanwhile: one more thread

// Everything is under the mutex. A pool must outlive its threads, so it is never freed: one that
// hangs may come back when the program ends.
struct Pool {
    std::mutex mutex;
    std::condition_variable begun;             // work was taken off the queue
    std::deque<std::function<void()>> waiting; // work that nobody has begun
    int workers = 0;                           // threads that run
    uint64_t taken = 0;                        // work taken off so far
    bool watched = false;                      // the watching thread runs
};

// Has the work done on a thread of the pool, in order of asking. 0, or -1 when there is no thread
// and none can be started.
int pool_ask(Pool &pool, std::function<void()> work);

void pool_forget(Pool &pool); // drops what nobody has begun

} // namespace tav
