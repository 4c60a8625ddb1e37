// Short-lived threads: what they run, what they see, what becomes of them.
#include "platform/worker.h"
#include "testdir.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace tav {

namespace {

bool x_all_ended()
{
    return test_wait([] { return worker_count() == 0; });
}

TEST(Worker, RunsTheWorkOnceAndFreesIt)
{
    std::atomic<int> runs{0};
    auto owned = std::make_shared<int>(1);
    ASSERT_EQ(worker_start([&runs, owned] { runs++; }), 0);
    EXPECT_TRUE(x_all_ended());
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(owned.use_count(), 1);
}

TEST(Worker, IsCountedUntilItsWorkHasEnded)
{
    std::atomic<bool> go{false};
    ASSERT_EQ(worker_start([&go] { test_wait([&go] { return go.load(); }); }), 0);
    EXPECT_EQ(worker_count(), 1);
    go = true;
    EXPECT_TRUE(x_all_ended());
}

TEST(Worker, SeesNoSignalAndItsStarterStillDoes)
{
    sigset_t mask;
    sigset_t before;
    sigset_t after;
    sigemptyset(&mask);
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    ASSERT_EQ(worker_start([&mask] { pthread_sigmask(SIG_SETMASK, nullptr, &mask); }), 0);
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_TRUE(x_all_ended());
    for (const int signal : {SIGWINCH, SIGUSR1, SIGUSR2, SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGPIPE})
        EXPECT_EQ(sigismember(&mask, signal), 1) << signal;
    for (int signal = 1; signal < SIGRTMIN; signal++)
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

// The processors that the calling thread may run on.
cpu_set_t x_processors()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    pthread_getaffinity_np(pthread_self(), sizeof set, &set);
    return set;
}

TEST(Worker, MayRunWhereverItsStarterMay)
{
    const cpu_set_t own = x_processors();
    std::atomic<bool> same{false};
    ASSERT_EQ(worker_start([&own, &same] {
                  same = test_wait([&own] {
                      const cpu_set_t set = x_processors();
                      return CPU_EQUAL(&set, &own);
                  });
              }),
              0);
    EXPECT_TRUE(x_all_ended());
    EXPECT_TRUE(same);
}

TEST(Worker, RunsWhereThereIsOneProcessorOnly)
{
    const cpu_set_t before = x_processors();
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    ASSERT_EQ(pthread_setaffinity_np(pthread_self(), sizeof one, &one), 0);
    std::atomic<int> processors{0};
    EXPECT_EQ(worker_start([&processors] {
                  const cpu_set_t set = x_processors();
                  processors = CPU_COUNT(&set);
              }),
              0);
    EXPECT_TRUE(x_all_ended());
    pthread_setaffinity_np(pthread_self(), sizeof before, &before);
    EXPECT_EQ(processors, 1);
}

TEST(Worker, ThatCannotStartIsToldAndNotCounted)
{
    const int told = test_as_ordinary_user([] {
        rlimit before;
        getrlimit(RLIMIT_NPROC, &before);
        const rlimit none = {0, before.rlim_max};
        setrlimit(RLIMIT_NPROC, &none);
        const bool refused = worker_start([] {}) == -1 && errno == EAGAIN;
        setrlimit(RLIMIT_NPROC, &before);
        return refused && worker_count() == 0 ? 1 : 0;
    });
    EXPECT_EQ(told, 1);
}

#ifndef TAV_SANITIZED // there a stack is larger

TEST(Worker, HasAStackOf64Kilobytes)
{
    size_t size = 0;
    ASSERT_EQ(worker_start([&size] {
                  pthread_attr_t attributes;
                  pthread_getattr_np(pthread_self(), &attributes);
                  pthread_attr_getstacksize(&attributes, &size);
                  pthread_attr_destroy(&attributes);
              }),
              0);
    EXPECT_TRUE(x_all_ended());
    EXPECT_EQ(size, 65536u);
    EXPECT_EQ(WORKER_STACK_SIZE, 65536u);
}

#endif

} // namespace
} // namespace tav
