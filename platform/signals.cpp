// Signals: the handler marks the signal and writes a byte into a pipe; the main loop reads it and
// hands the work to the gate, where it waits its turn. A signal that is already waiting is not
// queued again.
#include "platform/signals.h"

#include "platform/ui_gate.h"

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr int SIGNALS_LIMIT = 65;

int sPipe[2] = {-1, -1};                           // written by the handler, read by the main loop
std::atomic<bool> sArrived[SIGNALS_LIMIT];         // set by the handler, taken by the main loop
std::function<void(int)> sHandlers[SIGNALS_LIMIT]; // main thread
bool sWaiting[SIGNALS_LIMIT];                      // main thread: handed to the gate, not run yet
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may not wait");

void x_on_signal(int signal)
{
    const int saved = errno;
    sArrived[signal].store(true);
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(sPipe[1], &byte, 1);
    errno = saved;
}

void x_run(int signal)
{
    sWaiting[signal] = false;
    const std::function<void(int)> handler = sHandlers[signal];
    if (handler)
        handler(signal);
}

void x_readable()
{
    char bytes[64];
    while (read(sPipe[0], bytes, sizeof bytes) > 0) {
    }
    for (int signal = 1; signal < SIGNALS_LIMIT; signal++) {
        if (!sArrived[signal].exchange(false) || sWaiting[signal])
            continue;
        sWaiting[signal] = ui_gate_is_open();
        ui_post([signal] { x_run(signal); });
    }
}

// The pipe and its notifier, made once.
int x_make_pipe()
{
    if (sPipe[0] >= 0)
        return 0;
    if (pipe2(sPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return -1;
    return 0;
}

// Faults end the program with its core; job control and children are the system's business.
bool x_may_be_caught(int signal)
{
    switch (signal) {
    case SIGSEGV:
    case SIGBUS:
    case SIGFPE:
    case SIGILL:
    case SIGABRT:
    case SIGTRAP:
    case SIGSYS:
    case SIGKILL:
    case SIGSTOP:
    case SIGCHLD:
    case SIGTSTP:
    case SIGCONT:
    case SIGTTIN:
    case SIGTTOU:
        return false;
    default:
        return signal > 0 && signal < SIGNALS_LIMIT;
    }
}

int x_route(int signal, const std::function<void(int)> &handler)
{
    struct sigaction action = {};
    action.sa_handler = x_on_signal;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);
    sHandlers[signal] = handler;
    if (sigaction(signal, &action, nullptr) != 0)
        return -1;
    sigset_t one; // whoever started us may have left it blocked
    sigemptyset(&one);
    sigaddset(&one, signal);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    return 0;
}

} // namespace

int signals_add(std::initializer_list<int> set, const std::function<void(int signal)> &handler)
{
    for (const int signal : set) {
        if (!x_may_be_caught(signal)) {
            errno = EINVAL;
            return -1;
        }
    }
    static QSocketNotifier *notifier = nullptr;
    if (x_make_pipe() != 0)
        return -1;
    if (!notifier) {
        notifier = new QSocketNotifier(sPipe[0], QSocketNotifier::Read);
        QObject::connect(notifier, &QSocketNotifier::activated, [] { x_readable(); });
    }
    for (const int signal : set) {
        if (x_route(signal, handler) != 0)
            return -1;
    }
    return 0;
}

void signals_ignore(int signal) { std::signal(signal, SIG_IGN); }

} // namespace tav
