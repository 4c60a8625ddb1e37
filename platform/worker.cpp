// A short-lived detached thread: it owns its function and frees it at its end.
#include "platform/worker.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <memory>
#include <pthread.h>
#include <sched.h>

namespace tav {

decltype(&pthread_create) gWorkerCreate = pthread_create;

namespace {

std::atomic<int> sCount{0};

void *x_run(void *argument)
{
    {
        std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()> *>(argument));
        (*work)();
    }
    sCount--;
    return nullptr;
}

// Moves a new thread to another processor, from where it may go anywhere again. Else it often waits
// for its creator's, by up to a tick of the scheduler, while that one goes on and others are idle.
void x_send_away(pthread_t thread)
{
    cpu_set_t all;
    if (pthread_getaffinity_np(pthread_self(), sizeof all, &all) != 0)
        return;
    cpu_set_t others = all;
    CPU_CLR(sched_getcpu(), &others);
    if (CPU_COUNT(&others) == 0)
        return;
    pthread_setaffinity_np(thread, sizeof others, &others);
    pthread_setaffinity_np(thread, sizeof all, &all);
}

int x_create(std::function<void()> *work, [[maybe_unused]] size_t stack)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
#ifndef TAV_SANITIZED // a sanitizer's frames are larger
    pthread_attr_setstacksize(&attributes, stack);
#endif
    sigset_t all, before; // the thread inherits the mask: signals are the main thread's
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    const int error = gWorkerCreate(&thread, &attributes, x_run, work);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&attributes);
    if (error == 0) {
        x_send_away(thread);
        pthread_detach(thread);
    }
    return error;
}

} // namespace

int worker_start(std::function<void()> work, size_t stack)
{
    auto owned = std::make_unique<std::function<void()>>(std::move(work));
    sCount++;
    const int error = x_create(owned.get(), stack);
    if (error == 0) {
        static_cast<void>(owned.release()); // the thread's now
        return 0;
    }
    sCount--;
    errno = error;
    return -1;
}

int worker_count() { return sCount; }

} // namespace tav
