// A few threads and their queue: quick work, work that hangs, no thread to be had.
#include "platform/pool.h"
#include "platform/worker.h"
#include "testdir.h"

#include <atomic>
#include <cerrno>
#include <gtest/gtest.h>

namespace tav {

namespace {

int x_refuse(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *) noexcept
{
    return EAGAIN;
}

class PoolTest : public testing::Test {
protected:
    void TearDown() override
    {
        sHang = false;
        gWorkerCreate = pthread_create;
        EXPECT_TRUE(test_wait([] { return worker_count() == 0; }));
    }
    void hang(int count)
    {
        for (int i = 0; i < count; i++)
            pool_ask(pool, [] {
                sHanging++;
                test_wait([] { return !sHang; }, 60'000);
                sHanging--;
            });
    }

    Pool pool;
    static inline std::atomic<bool> sHang;
    static inline std::atomic<int> sHanging;

    void SetUp() override
    {
        sHang = true;
        sHanging = 0;
    }
};

TEST_F(PoolTest, DoesAllWorkOnceWithFewThreads)
{
    std::atomic<int> done{0}, most{0};
    for (int i = 0; i < 500; i++)
        ASSERT_EQ(pool_ask(pool,
                           [&] {
                               const std::lock_guard hold(pool.mutex);
                               if (pool.workers > most)
                                   most = pool.workers;
                               done++;
                           }),
                  0);
    EXPECT_TRUE(test_wait([&] { return done == 500; }));
    EXPECT_LE(most, POOL_WORKERS);
}

TEST_F(PoolTest, WorkThatHangsDoesNotKeepTheRestWaiting)
{
    hang(2 * POOL_WORKERS);
    std::atomic<bool> done{false};
    pool_ask(pool, [&done] { done = true; });
    EXPECT_TRUE(test_wait([&done] { return done.load(); }));
    EXPECT_EQ(sHanging, 2 * POOL_WORKERS);
}

TEST_F(PoolTest, WhatNobodyHasBegunCanBeForgotten)
{
    hang(POOL_WORKERS);
    ASSERT_TRUE(test_wait([] { return sHanging == POOL_WORKERS; }));
    std::atomic<bool> done{false};
    pool_ask(pool, [&done] { done = true; });
    pool_forget(pool);
    sHang = false;
    EXPECT_TRUE(test_wait([] { return worker_count() == 0; }));
    EXPECT_FALSE(done);
}

TEST_F(PoolTest, WithoutAThreadItSaysSoAndKeepsNothing)
{
    gWorkerCreate = x_refuse;
    EXPECT_EQ(pool_ask(pool, [] {}), -1);
    EXPECT_TRUE(pool.waiting.empty());
}

TEST_F(PoolTest, WithOneThreadItGoesOn)
{
    hang(1);
    ASSERT_TRUE(test_wait([] { return sHanging == 1; }));
    gWorkerCreate = x_refuse;
    std::atomic<bool> done{false};
    EXPECT_EQ(pool_ask(pool, [&done] { done = true; }), 0);
    sHang = false;
    EXPECT_TRUE(test_wait([&done] { return done.load(); }));
}

} // namespace
} // namespace tav
