// Scanning directories for destination menus.
#include "commands/dtm_scan.h"
#include "platform/worker.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>
#include <unistd.h>

using namespace tav;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DtmScanTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_base = testing::TempDir() + "dtm_scan." + std::to_string(getpid());
        fs::remove_all(m_base);
        fs::create_directories(m_base);
    }
    void TearDown() override { fs::remove_all(m_base); }

    void dirs(std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            fs::create_directories(m_base + "/" + name);
    }
    void file(const char *name) { std::ofstream(m_base + "/" + name) << "x"; }

    std::vector<std::string> scan(unsigned flags = 0)
    {
        std::vector<std::string> names;
        std::atomic<bool> cancel{false};
        EXPECT_EQ(dtm_dir_scan(m_base.c_str(), flags, cancel, names), 0);
        return names;
    }

    std::string m_base;
};

std::vector<std::string> x_sorted(std::vector<std::string> names)
{
    dtm_sort(names);
    return names;
}

std::atomic<int> sListed, sExamined;
const DtmScanReport sReport = {[](const auto &) { sListed++; }, [](const auto &) { sExamined++; }};

std::shared_ptr<DtmScan> x_scan_of(const std::string &path)
{
    auto scan = std::make_shared<DtmScan>();
    scan->path = path;
    sListed = sExamined = 0;
    return scan;
}

// Waits until the condition holds, at most ten seconds.
template <typename Condition>
bool x_wait(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return condition();
}

} // namespace

TEST(DtmSort, NumbersByValueOthersByBytesMergedByBytes)
{
    EXPECT_THAT(x_sorted({"10", "1a", "2"}), ElementsAre("1a", "2", "10"));
    EXPECT_THAT(x_sorted({"b", "10", "9", "B", "a"}), ElementsAre("9", "10", "B", "a", "b"));
    EXPECT_THAT(x_sorted({"007", "7", "06"}), ElementsAre("06", "007", "7"));
    EXPECT_THAT(x_sorted({"x", "", "0"}), ElementsAre("", "0", "x"));
}

TEST(DtmSort, NumbersOfAnyLengthKeepTheirOrder)
{
    EXPECT_THAT(x_sorted({"99999999999999999999999", "4294967296", "3"}),
                ElementsAre("3", "4294967296", "99999999999999999999999"));
}

TEST_F(DtmScanTest, TwoComesBeforeTenAndOneAByBytes)
{
    dirs({"10", "2", "1a"});
    EXPECT_THAT(scan(), ElementsAre("1a", "2", "10"));
}

TEST_F(DtmScanTest, OnlyDirectoriesAndLinksToThemAreListed)
{
    dirs({"dir", ".hidden"});
    file("file");
    fs::create_directory_symlink(m_base + "/dir", m_base + "/link");
    fs::create_symlink(m_base + "/file", m_base + "/filelink");
    fs::create_symlink(m_base + "/nowhere", m_base + "/broken");
    EXPECT_THAT(scan(), ElementsAre(".hidden", "dir", "link"));
    EXPECT_THAT(scan(DTM_HIDE_DOT), ElementsAre("dir", "link"));
}

TEST_F(DtmScanTest, SubdirectoryTestFollowsTheSameRules)
{
    file("file");
    EXPECT_FALSE(dtm_is_subdirs(m_base.c_str(), 0));
    dirs({".hidden"});
    EXPECT_TRUE(dtm_is_subdirs(m_base.c_str(), 0));
    EXPECT_FALSE(dtm_is_subdirs(m_base.c_str(), DTM_HIDE_DOT));
    EXPECT_FALSE(dtm_is_subdirs((m_base + "/file").c_str(), 0));
    EXPECT_FALSE(dtm_is_subdirs((m_base + "/gone").c_str(), 0));
}

TEST_F(DtmScanTest, ADirectoryThatIsGoneOrCancelledFails)
{
    dirs({"a"});
    std::vector<std::string> names = {"old"};
    std::atomic<bool> cancel{false};
    EXPECT_EQ(dtm_dir_scan((m_base + "/gone").c_str(), 0, cancel, names), -1);
    EXPECT_THAT(names, IsEmpty());
    cancel = true;
    EXPECT_EQ(dtm_dir_scan(m_base.c_str(), 0, cancel, names), -1);
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(DtmScanTest, RunListsThenExamines)
{
    dirs({"a/b", "c"});
    auto scan = x_scan_of(m_base);
    dtm_scan_run(scan, sReport);
    EXPECT_TRUE(scan->started);
    EXPECT_TRUE(scan->finished);
    EXPECT_EQ(sListed, 1);
    EXPECT_GE(sExamined, 1);
    ASSERT_THAT(scan->names, ElementsAre("a", "c"));
    EXPECT_EQ(scan->states[0], DtmState::cascade);
    EXPECT_EQ(scan->states[1], DtmState::plain);
}

TEST_F(DtmScanTest, RunOfAMissingDirectoryFailsAndIsReported)
{
    auto scan = x_scan_of(m_base + "/gone");
    dtm_scan_run(scan, sReport);
    EXPECT_TRUE(scan->failed);
    EXPECT_TRUE(scan->finished);
    EXPECT_EQ(sListed, 1);
}

TEST_F(DtmScanTest, CancelledRunReportsNothingAndFinishes)
{
    dirs({"a"});
    auto scan = x_scan_of(m_base);
    scan->cancel = true;
    dtm_scan_run(scan, sReport);
    EXPECT_TRUE(scan->finished);
    EXPECT_EQ(sListed, 0);
}

TEST_F(DtmScanTest, NothingIsFreedBeforeTheWorkerHasFinished)
{
    for (int i = 0; i < 200; i++)
        fs::create_directories(m_base + "/" + std::to_string(i) + "/sub");
    for (int i = 0; i < 100; i++) {
        auto scan = x_scan_of(m_base);
        std::weak_ptr<DtmScan> seen = scan;
        ASSERT_EQ(worker_start([scan] { dtm_scan_run(scan, sReport); }), 0);
        if (i % 2) {
            EXPECT_TRUE(x_wait([&] { return scan->started.load(); }));
        }
        scan->cancel = true;
        scan.reset();
        EXPECT_TRUE(x_wait([&] { return seen.expired(); }));
    }
    EXPECT_TRUE(x_wait([] { return worker_count() == 0; }));
}

TEST(Dtm, PathsAreJoinedWithOneSlash)
{
    EXPECT_EQ(dtm_join("/", "a"), "/a");
    EXPECT_EQ(dtm_join("/a", "b"), "/a/b");
}
