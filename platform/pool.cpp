// A few detached threads that work off a queue.
#include "platform/pool.h"
#include "platform/worker.h"

#include <chrono>

namespace tav {

namespace {

// Works until nothing waits.
void x_work(Pool &pool)
{
    std::unique_lock lock(pool.mutex);
    while (!pool.waiting.empty()) {
        {
            const std::function<void()> work = std::move(pool.waiting.front());
            pool.waiting.pop_front();
            pool.taken++;
            pool.begun.notify_all();
            lock.unlock();
            work();
        }
        lock.lock();
    }
    pool.workers--;
    pool.begun.notify_all();
}

// Under the mutex.
bool x_start(Pool &pool)
{
    pool.workers++;
    if (worker_start([&pool] { x_work(pool); }) == 0)
        return true;
    pool.workers--;
    return false;
}

// While work waits: one more thread whenever the others seem to hang.
void x_watch(Pool &pool)
{
    std::unique_lock lock(pool.mutex);
    while (!pool.waiting.empty()) {
        const uint64_t taken = pool.taken;
        const bool moved =
            pool.begun.wait_for(lock, std::chrono::milliseconds(POOL_HUNG_MS), [&pool, taken] {
                return pool.taken != taken || pool.waiting.empty();
            });
        if (!moved && pool.workers < POOL_WORKERS_MAX)
            x_start(pool);
    }
    pool.watched = false;
}

} // namespace

int pool_ask(Pool &pool, std::function<void()> work)
{
    const std::lock_guard lock(pool.mutex);
    pool.waiting.push_back(std::move(work));
    const bool started = pool.workers < POOL_WORKERS && x_start(pool);
    if (pool.workers == 0) {
        pool.waiting.pop_back();
        return -1;
    }
    if (!started && !pool.watched)
        pool.watched = worker_start([&pool] { x_watch(pool); }) == 0;
    return 0;
}

void pool_forget(Pool &pool)
{
    const std::lock_guard lock(pool.mutex);
    pool.waiting.clear();
    pool.begun.notify_all();
}

} // namespace tav
