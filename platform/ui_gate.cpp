// The gate: one queue, one wake-up through an eventfd, so that a worker calls nothing of the
// toolkit.
//
// Who owns what: everything in Gate but `notifier`, `held` and `running` is guarded by `mutex`;
// those three belong to the main thread. A Waiter lives on the stack of the thread that waits for
// it and is touched by the main thread only while `mutex` is held and its state says WAITING or
// RUNNING. How it ends: ui_gate_close refuses the waiting calls and drops the rest; one that is
// running is finished.
#include "platform/ui_gate.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>

namespace tav {
namespace {

enum class State { WAITING, RUNNING, DONE, REFUSED };

// One ui_call that somebody waits for.
struct Waiter {
    const std::function<void()> *function; // the caller's, valid until the state is DONE or REFUSED
    State state;                           // under Gate::mutex
};

// One function in the queue: either somebody's call or a posted function of our own.
struct Item {
    Waiter *waiter;                 // null for a posted function
    std::function<void()> function; // of a posted function
};

struct Gate {
    std::mutex mutex;
    std::condition_variable changed; // a waiter's state changed
    std::deque<Item> queue;          // in the order of arrival
    bool open = false;               // under mutex
    int wake_fd = -1;                // eventfd; kept open, so that a late writer hits nothing else
    std::thread::id main;            // under mutex: the thread that opened the gate
    std::unique_ptr<QSocketNotifier> notifier; // main thread
    int held = 0;                              // main thread
    bool running = false;                      // main thread: one at a time
};

// Never destroyed: a detached worker may still come by when the statics of the program are gone.
Gate &x_gate()
{
    static Gate *const gate = new Gate;
    return *gate;
}

void x_wake(const Gate &gate)
{
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(gate.wake_fd, &one, sizeof one);
}

// Puts an item into the queue; the mutex is held.
void x_append(Gate &gate, Item item)
{
    gate.queue.push_back(std::move(item));
    if (gate.queue.size() == 1)
        x_wake(gate);
}

// Takes the first item when one may run now.
bool x_take(Gate &gate, Item &item)
{
    const std::lock_guard lock(gate.mutex);
    if (gate.queue.empty())
        return false;
    item = std::move(gate.queue.front());
    gate.queue.pop_front();
    if (item.waiter)
        item.waiter->state = State::RUNNING;
    return true;
}

void x_run(Gate &gate, const Item &item)
{
    if (!item.waiter) {
        item.function();
        return;
    }
    (*item.waiter->function)();
    const std::lock_guard lock(gate.mutex);
    item.waiter->state = State::DONE;
    gate.changed.notify_all();
}

// Runs what is in the queue. At most as much as stood there at the start, so that a worker that
// asks without pause cannot keep the main loop from its other events.
void x_run_waiting(Gate &gate)
{
    size_t limit = 0;
    {
        const std::lock_guard lock(gate.mutex);
        limit = gate.queue.size();
    }
    Item item;
    for (; limit > 0 && !gate.held && !gate.running && x_take(gate, item); limit--) {
        gate.running = true;
        x_run(gate, item);
        gate.running = false;
        item = Item();
    }
}

// The eventfd is readable: run, and come back when something is left.
void x_woken()
{
    Gate &gate = x_gate();
    uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(gate.wake_fd, &count, sizeof count);
    if (gate.held || gate.running)
        return; // the release, or the end of what is running, wakes again
    x_run_waiting(gate);
    const std::lock_guard lock(gate.mutex);
    if (!gate.queue.empty())
        x_wake(gate);
}

} // namespace

void ui_gate_open()
{
    Gate &gate = x_gate();
    const std::lock_guard lock(gate.mutex);
    if (gate.open)
        return;
    if (gate.wake_fd < 0)
        gate.wake_fd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    gate.main = std::this_thread::get_id();
    gate.notifier = std::make_unique<QSocketNotifier>(gate.wake_fd, QSocketNotifier::Read);
    QObject::connect(gate.notifier.get(), &QSocketNotifier::activated, [] { x_woken(); });
    gate.open = true;
}

void ui_gate_close()
{
    Gate &gate = x_gate();
    std::deque<Item> dropped; // destroyed unlocked: what a function captured may come back here
    {
        const std::lock_guard lock(gate.mutex);
        gate.open = false;
        dropped.swap(gate.queue);
        for (const Item &item : dropped) {
            if (item.waiter)
                item.waiter->state = State::REFUSED;
        }
        gate.changed.notify_all();
    }
    if (gate.notifier)
        gate.notifier.release()->deleteLater(); // it may be the one that is calling us
    gate.held = 0;
}

bool ui_gate_is_open()
{
    Gate &gate = x_gate();
    const std::lock_guard lock(gate.mutex);
    return gate.open;
}

bool ui_call(const std::function<void()> &f)
{
    Gate &gate = x_gate();
    std::unique_lock lock(gate.mutex);
    if (!gate.open)
        return false;
    if (gate.main == std::this_thread::get_id()) {
        lock.unlock();
        f();
        return true;
    }
    Waiter waiter = {&f, State::WAITING};
    x_append(gate, Item{&waiter, {}});
    gate.changed.wait(
        lock, [&waiter] { return waiter.state == State::DONE || waiter.state == State::REFUSED; });
    return waiter.state == State::DONE;
}

void ui_post(std::function<void()> f)
{
    Gate &gate = x_gate();
    const std::lock_guard lock(gate.mutex);
    if (gate.open)
        x_append(gate, Item{nullptr, std::move(f)});
}

void ui_gate_hold() { x_gate().held++; }

void ui_gate_release()
{
    Gate &gate = x_gate();
    if (gate.held > 0 && --gate.held > 0)
        return;
    const std::lock_guard lock(gate.mutex);
    if (gate.open && !gate.queue.empty())
        x_wake(gate);
}

void ui_gate_drain()
{
    Gate &gate = x_gate();
    while (!gate.held && !gate.running) {
        {
            const std::lock_guard lock(gate.mutex);
            if (gate.queue.empty())
                return;
        }
        x_run_waiting(gate);
    }
}

} // namespace tav
