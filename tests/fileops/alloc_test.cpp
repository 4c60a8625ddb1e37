// The allocation pool.
#include "fileops/alloc.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace tav {
namespace {

struct Alloc : testing::Test {
    AllocPool *pool = alloc_start();
    ~Alloc() override { alloc_free(pool); }
};

TEST_F(Alloc, begins_empty_with_1024_slots)
{
    ASSERT_TRUE(pool);
    EXPECT_EQ(pool->count, 0u);
    EXPECT_EQ(pool->capacity, 1024u);
}

TEST_F(Alloc, a_failed_allocation_handed_straight_on_reads_as_null)
{
    EXPECT_EQ(alloc_add(pool, nullptr), nullptr);
    void *block = std::malloc(1);
    EXPECT_EQ(alloc_add(nullptr, block), nullptr);
    std::free(block);
    EXPECT_EQ(pool->count, 0u);
}

TEST_F(Alloc, grows_by_exactly_one_slot_when_full)
{
    for (size_t i = 0; i < 1024; i++)
        ASSERT_TRUE(alloc_add(pool, std::malloc(1)));
    EXPECT_EQ(pool->capacity, 1024u);
    ASSERT_TRUE(alloc_add(pool, std::malloc(1)));
    EXPECT_EQ(pool->capacity, 1025u);
    ASSERT_TRUE(alloc_add(pool, std::malloc(1)));
    EXPECT_EQ(pool->capacity, 1026u);
    EXPECT_EQ(pool->count, 1026u);
}

TEST_F(Alloc, reallocates_a_held_block_in_its_place)
{
    alloc_add(pool, std::malloc(1));
    auto *block = static_cast<char *>(alloc_add(pool, std::malloc(4)));
    std::strcpy(block, "abc");
    auto *larger = static_cast<char *>(alloc_realloc(pool, block, 100'000));
    ASSERT_TRUE(larger);
    EXPECT_STREQ(larger, "abc");
    EXPECT_EQ(pool->pointers[1], larger);
    EXPECT_EQ(pool->count, 2u);
}

TEST_F(Alloc, only_adds_a_block_that_it_does_not_hold)
{
    void *block = std::malloc(3);
    EXPECT_EQ(alloc_realloc(pool, block, 100'000), block);
    EXPECT_EQ(pool->count, 1u);
    EXPECT_EQ(alloc_realloc(pool, nullptr, 5), nullptr);
    EXPECT_EQ(alloc_realloc(nullptr, block, 5), nullptr);
}

} // namespace
} // namespace tav
