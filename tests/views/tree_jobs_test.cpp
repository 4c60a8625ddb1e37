// The tree's workers: levels and probes, quick ones and ones that hang.
#include "platform/pool.h"
#include "testdir.h"
#include "views/tree_jobs.h"

#include <algorithm>
#include <gmock/gmock.h>

using namespace tav;
using testing::ElementsAre;

namespace {

std::atomic<int> sNotified;
std::atomic<bool> sHang;   // directories named "hang" do not answer
std::atomic<int> sHanging; // questions that wait

int slow_has_subdirectories(const char *, const char *name, unsigned)
{
    if (strstr(name, "hang")) {
        ++sHanging;
        test_wait([] { return !sHang; }, 60000);
        --sHanging;
    }
    return 7;
}

DIR *slow_open(const char *path)
{
    slow_has_subdirectories(nullptr, path, 0);
    return opendir(path);
}

class TreeJobs : public testing::Test {
protected:
    // Once: workers that still come back call it.
    static void SetUpTestSuite()
    {
        gTreeProbeNotify = [] { ++sNotified; };
    }
    void SetUp() override
    {
        before = gTreeCalls;
        sNotified = 0;
        sHang = false;
    }
    void TearDown() override
    {
        sHang = false;
        EXPECT_TRUE(test_wait([] { return sHanging == 0; }));
        gTreeCalls = before;
        tree_probe_answers();
    }
    // The whole level, by name.
    static std::vector<std::string> level(const TreeLevelRequest &request)
    {
        auto reading = tree_level_start(request);
        std::vector<std::string> names;
        for (bool done = false; !done;)
            for (const TreeRow &row : tree_level_take(*reading, 10000, done))
                names.push_back(row.name);
        std::sort(names.begin(), names.end());
        return names;
    }
    // Answers until there are count, as "path=answer".
    static std::vector<std::string> answers(size_t count)
    {
        std::vector<std::string> all;
        test_wait([&] {
            for (const TreeProbe &probe : tree_probe_answers())
                all.push_back(probe.path + '=' + std::to_string(probe.subdirectories));
            return all.size() >= count;
        });
        std::sort(all.begin(), all.end());
        return all;
    }
    TreeCalls before;
    TestDir dir;
};

TEST_F(TreeJobs, ALevelHoldsDirectoriesAndLinksToThem)
{
    dir.dir("a");
    dir.dir(".dot");
    dir.file("file");
    dir.link("link", dir.at("a"));
    dir.link("broken", dir.at("none"));
    dir.link("circle", "circle");
    dir.fifo("fifo");
    EXPECT_THAT(level({dir.path(), true, false}), ElementsAre(".dot", "a", "link"));
    EXPECT_THAT(level({dir.path(), false, false}), ElementsAre("a", "link"));
    EXPECT_THAT(level({dir.path(), true, true}), ElementsAre("..", ".dot", "a", "link"));
    EXPECT_THAT(level({dir.path(), false, true}), ElementsAre("a", "link"));
}

TEST_F(TreeJobs, ALevelThatCannotBeReadIsEmpty)
{
    EXPECT_THAT(level({dir.at("none"), true, true}), ElementsAre());
    EXPECT_THAT(level({dir.file("file"), true, true}), ElementsAre());
}

TEST_F(TreeJobs, ALevelStopsWhenNobodyWaitsForIt)
{
    for (int i = 0; i < 600; ++i)
        dir.dir("d" + std::to_string(i));
    gTreeCalls.has_subdirectories = slow_has_subdirectories;
    sHang = true;
    dir.dir("hang");
    auto reading = tree_level_start({dir.path(), true, false});
    ASSERT_TRUE(test_wait([] { return sHanging == 1; }));
    reading->cancel = true;
    sHang = false;
    bool done = false;
    size_t rows = 0;
    while (!done)
        rows += tree_level_take(*reading, 10000, done).size();
    EXPECT_LE(rows, 601u);
}

TEST_F(TreeJobs, ALevelTellsWhenRowsWaitAndWhenItIsDone)
{
    static std::atomic<int> waiting, done;
    waiting = done = 0;
    gTreeLevelNotify = [](bool last) { ++(last ? done : waiting); };
    for (int i = 0; i < 100; ++i)
        dir.dir("d" + std::to_string(i));
    auto reading = tree_level_start({dir.path(), true, false});
    ASSERT_TRUE(test_wait([] { return done == 1; }));
    EXPECT_EQ(waiting, 1); // nobody took any meanwhile
    gTreeLevelNotify = nullptr;
    bool all = false;
    EXPECT_EQ(tree_level_take(*reading, 0, all).size(), 100u);
    EXPECT_TRUE(all);
}

TEST_F(TreeJobs, ProbesAreAnsweredInOneBatchOrMore)
{
    dir.dir("with/inner");
    dir.dir("without");
    tree_probe_ask({{1, dir.at("with"), true, 0},
                    {2, dir.at("without"), true, 0},
                    {3, dir.at("none"), true, 0},
                    {4, "", true, 0}});
    const auto all = answers(4);
    EXPECT_THAT(all,
                testing::UnorderedElementsAre("=-1", dir.at("none") + "=-1", dir.at("with") + "=3",
                                              dir.at("without") + "=0"));
    EXPECT_GE(sNotified, 1);
}

TEST_F(TreeJobs, HangingDirectoriesDoNotKeepTheOthersWaiting)
{
    gTreeCalls.has_subdirectories = slow_has_subdirectories;
    sHang = true;
    std::vector<TreeProbe> questions;
    for (uint64_t i = 1; i <= 2 * POOL_WORKERS; ++i)
        questions.push_back({i, "hang" + std::to_string(i), true, 0});
    questions.push_back({100, "quick", true, 0});
    tree_probe_ask(std::move(questions));
    EXPECT_THAT(answers(1), ElementsAre("quick=7"));
    EXPECT_EQ(sHanging, 2 * POOL_WORKERS);
    sHang = false;
    EXPECT_EQ(answers(2 * POOL_WORKERS).size(), 2u * POOL_WORKERS);
}

TEST_F(TreeJobs, QuestionsThatNobodyBeganAreForgotten)
{
    gTreeCalls.has_subdirectories = slow_has_subdirectories;
    sHang = true;
    std::vector<TreeProbe> questions;
    for (uint64_t i = 1; i <= POOL_WORKERS; ++i)
        questions.push_back({i, "hang" + std::to_string(i), true, 0});
    tree_probe_ask(std::move(questions));
    ASSERT_TRUE(test_wait([] { return sHanging == POOL_WORKERS; }));
    tree_probe_ask({{100, "later", true, 0}});
    tree_probe_forget();
    sHang = false;
    EXPECT_EQ(answers(POOL_WORKERS).size(), size_t(POOL_WORKERS));
    ASSERT_TRUE(test_wait([] { return sHanging == 0; }));
    EXPECT_TRUE(tree_probe_answers().empty());
}

TEST_F(TreeJobs, ALevelOfAHangingDiskGivesItsRowsLater)
{
    gTreeCalls.open = slow_open;
    gTreeCalls.has_subdirectories = [](const char *, const char *, unsigned) { return 0; };
    sHang = true;
    dir.dir("hang/a");
    auto reading = tree_level_start({dir.at("hang"), true, false});
    bool done = true;
    EXPECT_TRUE(tree_level_take(*reading, 1, done).empty());
    EXPECT_FALSE(done);
    sHang = false;
    std::vector<TreeRow> rows;
    while (!done)
        for (TreeRow &row : tree_level_take(*reading, 10000, done))
            rows.push_back(row);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].name, "a");
}

} // namespace
