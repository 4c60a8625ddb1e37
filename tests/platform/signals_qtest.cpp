// Signals in the main loop.
#include "platform/signals.h"
#include "platform/ui_gate.h"
#include "platform/worker.h"

#include <QTest>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tav;

class SignalsTest : public QObject {
    Q_OBJECT

    int calls_ = 0;
    int last_ = 0;

private Q_SLOTS:
    void init()
    {
        ui_gate_open();
        calls_ = last_ = 0;
        const auto count = [this](int signal) { calls_++, last_ = signal; };
        QCOMPARE(signals_add({SIGWINCH, SIGUSR1, SIGUSR2, SIGHUP, SIGTERM}, count), 0);
    }
    void cleanup() { ui_gate_close(); }

    void a_signal_reaches_the_main_loop_as_a_function()
    {
        raise(SIGWINCH);
        QCOMPARE(calls_, 0);
        QTRY_COMPARE(calls_, 1);
        QCOMPARE(last_, SIGWINCH);
        kill(getpid(), SIGTERM);
        QTRY_COMPARE(calls_, 2);
        QCOMPARE(last_, SIGTERM);
    }

    void a_signal_that_was_blocked_at_the_start_arrives()
    {
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, SIGUSR1);
        QCOMPARE(pthread_sigmask(SIG_BLOCK, &one, nullptr), 0);
        QCOMPARE(signals_add({SIGUSR1}, [this](int) { calls_++; }), 0);
        raise(SIGUSR1); // for this thread: another has not blocked it
        QTRY_COMPARE(calls_, 1);
    }

    void a_signal_waits_while_the_gate_is_held_and_counts_once()
    {
        ui_gate_hold();
        raise(SIGWINCH);
        QCoreApplication::processEvents();
        raise(SIGWINCH);
        QCoreApplication::processEvents();
        QCOMPARE(calls_, 0);
        ui_gate_release();
        QTRY_COMPARE(calls_, 1);
        QCoreApplication::processEvents();
        QCOMPARE(calls_, 1);
    }

    void a_signal_raised_by_its_own_handler_comes_again()
    {
        int rounds = 0;
        signals_add({SIGUSR1}, [&](int signal) {
            if (++rounds < 3)
                raise(signal);
        });
        raise(SIGUSR1);
        QTRY_COMPARE(rounds, 3);
    }

    void a_later_handler_replaces_the_earlier()
    {
        int other = 0;
        signals_add({SIGUSR2}, [&](int) { other++; });
        raise(SIGUSR2);
        QTRY_COMPARE(other, 1);
        QCOMPARE(calls_, 0);
    }

    void what_must_be_left_alone_is_refused_and_nothing_is_routed()
    {
        for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGKILL, SIGSTOP, SIGCHLD,
                           SIGTSTP, SIGCONT, SIGTTIN, SIGTTOU, 0, -1, 65}) {
            struct sigaction before = {};
            sigaction(SIGINT, nullptr, &before);
            errno = 0;
            QCOMPARE(signals_add({SIGINT, signal}, [](int) {}), -1);
            QCOMPARE(errno, EINVAL);
            struct sigaction action = {};
            sigaction(SIGINT, nullptr, &action);
            QVERIFY(action.sa_handler == before.sa_handler);
        }
    }

    void a_signal_reaches_the_main_loop_while_a_worker_runs()
    {
        std::atomic<int> state = 0;
        QCOMPARE(worker_start([&state] {
                     state = 1;
                     while (state != 2)
                         std::this_thread::yield();
                 }),
                 0);
        QTRY_COMPARE(state.load(), 1);
        kill(getpid(), SIGWINCH);
        QTRY_COMPARE(calls_, 1);
        state = 2;
        QTRY_COMPARE(worker_count(), 0);
    }

    void an_ignored_pipe_fails_instead_of_ending_us()
    {
        signals_ignore(SIGPIPE);
        int ends[2];
        QCOMPARE(pipe(ends), 0);
        ::close(ends[0]);
        QCOMPARE(write(ends[1], "x", 1), ssize_t(-1));
        QCOMPARE(errno, EPIPE);
        ::close(ends[1]);
    }

    void a_started_program_has_the_default_back()
    {
        const pid_t child = fork();
        if (child == 0) {
            execl("/bin/sh", "sh", "-c", "kill -TERM $$; exit 7", nullptr);
            _exit(9);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGTERM);
    }

    void a_signal_with_the_gate_closed_is_dropped()
    {
        ui_gate_close();
        raise(SIGWINCH);
        QCoreApplication::processEvents();
        ui_gate_open();
        QCoreApplication::processEvents();
        raise(SIGWINCH);
        QTRY_VERIFY(calls_ >= 1);
    }
};

QTEST_MAIN(SignalsTest)
#include "signals_qtest.moc"
