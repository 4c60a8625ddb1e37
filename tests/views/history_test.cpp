// The stacks behind Back and Forward.
#include "views/history.h"

#include <gmock/gmock.h>

using namespace tav;
using testing::ElementsAre;

namespace {

std::vector<std::string> paths_of(const HistoryStack &stack)
{
    std::vector<std::string> paths;
    const int count = x_history_get_array(stack, paths);
    EXPECT_EQ(count, static_cast<int>(paths.size()));
    EXPECT_EQ(stack.count, static_cast<int>(paths.size()));
    return paths;
}

TEST(History, GivesPathsFromTheMostRecentToTheOldest)
{
    HistoryStack stack{};
    for (const char *path : {"/s", "/a", "/b"})
        x_history_push(stack, path);
    EXPECT_THAT(paths_of(stack), ElementsAre("/b", "/a", "/s"));
    EXPECT_EQ(x_history_pop(stack), "/b");
    EXPECT_THAT(paths_of(stack), ElementsAre("/a", "/s"));
}

TEST(History, IgnoresANullPath)
{
    HistoryStack stack{};
    x_history_push(stack, nullptr);
    EXPECT_EQ(stack.count, 0);
}

TEST(History, PushingThePathOnTopChangesNothing)
{
    HistoryStack stack{};
    x_history_push(stack, "/a");
    x_history_push(stack, "/b");
    x_history_push(stack, "/b");
    EXPECT_THAT(paths_of(stack), ElementsAre("/b", "/a"));
    x_history_push(stack, "/a");
    EXPECT_THAT(paths_of(stack), ElementsAre("/a", "/b", "/a"));
}

TEST(History, ForgetsTheTwoOldestOfTwelve)
{
    HistoryStack stack{};
    for (int i = 0; i < 12; ++i)
        x_history_push(stack, ("/d" + std::to_string(i)).c_str());
    EXPECT_THAT(paths_of(stack), ElementsAre("/d11", "/d10", "/d9", "/d8", "/d7", "/d6", "/d5",
                                             "/d4", "/d3", "/d2"));
}

TEST(History, KeepsTheOldestNodeWhenItIsPushedAgainOnAFullStack)
{
    HistoryStack stack{};
    for (int i = 0; i < HISTORY_SIZE; ++i)
        x_history_push(stack, ("/d" + std::to_string(i)).c_str());
    x_history_push(stack, "/d0");
    EXPECT_THAT(paths_of(stack),
                ElementsAre("/d0", "/d9", "/d8", "/d7", "/d6", "/d5", "/d4", "/d3", "/d2", "/d1"));
}

TEST(History, PopOfAnEmptyStackGivesNothing)
{
    HistoryStack stack{};
    EXPECT_EQ(x_history_pop(stack), std::nullopt);
    EXPECT_EQ(stack.count, 0);
}

TEST(History, ClearEndsWithNothing)
{
    HistoryStack stack{};
    x_history_push(stack, "/a");
    x_history_clear(stack);
    EXPECT_TRUE(paths_of(stack).empty());
}

} // namespace
