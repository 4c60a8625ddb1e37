// The small routines.
#include "commands/misc.h"

#include "testdir.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>

using namespace tav;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

class MiscWalk : public testing::Test {
protected:
    MiscWalk()
    {
        dir.dir("top/sub/deep");
        dir.file("top/a");
        dir.file("top/sub/b");
        dir.link("top/loop", dir.at("top"));
    }

    std::vector<std::string> walked(int parent_first, const std::string &stop = "")
    {
        std::vector<std::string> seen;
        result = misc_walktree(
            dir.at("top").c_str(),
            [&](const std::string &path, const struct stat &info) {
                seen.push_back(path.substr(dir.path().size() + 1) +
                               (S_ISDIR(info.st_mode) ? "/" : ""));
                return path == stop ? -1 : 0;
            },
            parent_first);
        return seen;
    }

    // Where it stands in the order of visits.
    static size_t at(const std::vector<std::string> &seen, const std::string &name)
    {
        return static_cast<size_t>(std::find(seen.begin(), seen.end(), name) - seen.begin());
    }

    TestDir dir;
    int result = 0;
};

TEST_F(MiscWalk, ADirectoryComesBeforeWhatItHolds)
{
    const auto seen = walked(1);
    EXPECT_EQ(result, 0);
    EXPECT_THAT(seen, UnorderedElementsAre("top/", "top/a", "top/loop", "top/sub/", "top/sub/b",
                                           "top/sub/deep/"));
    EXPECT_EQ(seen.front(), "top/");
    EXPECT_LT(at(seen, "top/sub/"), at(seen, "top/sub/b"));
}

TEST_F(MiscWalk, OrAfterIt)
{
    const auto seen = walked(0);
    EXPECT_EQ(seen.back(), "top/");
    EXPECT_GT(at(seen, "top/sub/"), at(seen, "top/sub/deep/"));
}

TEST_F(MiscWalk, AVisitThatFailsEndsTheWalk)
{
    const auto seen = walked(1, dir.at("top"));
    EXPECT_EQ(result, -1);
    EXPECT_THAT(seen, ElementsAre("top/"));
    walked(0, dir.at("top/sub/b"));
    EXPECT_EQ(result, -1);
}

TEST_F(MiscWalk, OnlyADirectoryCanBeWalked)
{
    const auto nothing = [](const std::string &, const struct stat &) { return 0; };
    EXPECT_EQ(misc_walktree(dir.at("top/a").c_str(), nothing, 1), -1);
    EXPECT_EQ(misc_walktree(dir.at("missing").c_str(), nothing, 1), -1);
    EXPECT_EQ(misc_walktree(dir.at("top/loop").c_str(), nothing, 1), 0);
}

TEST(MiscMkpath, MakesWhatIsMissing)
{
    TestDir dir;
    umask(022);
    EXPECT_EQ(misc_mkpath(dir.at("a/b//c/").c_str()), 0);
    EXPECT_EQ(dir.status("a/b/c").st_mode, mode_t{S_IFDIR | 0755});
    EXPECT_EQ(misc_mkpath(dir.at("a/b/c").c_str()), 0);
    dir.link("link", dir.at("a"));
    EXPECT_EQ(misc_mkpath(dir.at("link/d").c_str()), 0);
    EXPECT_TRUE(dir.exists("a/d"));
}

TEST(MiscMkpath, FailsAtAFile)
{
    TestDir dir;
    dir.file("file");
    EXPECT_EQ(misc_mkpath(dir.at("file/below").c_str()), -1);
    EXPECT_EQ(misc_mkpath(dir.at("file").c_str()), -1);
    EXPECT_EQ(errno, ENOTDIR);
}

TEST(MiscMkpath, ANodeNumberIsNoDirectoryToMake)
{
    EXPECT_EQ(misc_mkpath("//12"), 0);
    EXPECT_FALSE(std::filesystem::exists("/12"));
    EXPECT_EQ(misc_mkpath("//tmp"), 0);
}

TEST(MiscMkpath, RelativeAndEmptyPaths)
{
    TestDir dir;
    ASSERT_EQ(chdir(dir.path().c_str()), 0);
    EXPECT_EQ(misc_mkpath("x/y"), 0);
    EXPECT_TRUE(dir.exists("x/y"));
    EXPECT_EQ(misc_mkpath(""), 0);
    EXPECT_EQ(misc_mkpath("/"), 0);
}

TEST(MiscMkdir, MakesOneUnlessItIsThere)
{
    TestDir dir;
    dir.file("file");
    EXPECT_EQ(misc_mkdir(dir.at("new").c_str()), 0);
    EXPECT_EQ(misc_mkdir(dir.at("new").c_str()), 0);
    EXPECT_EQ(misc_mkdir(dir.at("file").c_str()), -1);
    EXPECT_EQ(misc_mkdir(dir.at("no/such").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(MiscAllDigits, AnEmptyTextCounts)
{
    EXPECT_TRUE(misc_all_digits(""));
    EXPECT_TRUE(misc_all_digits("0123456789"));
    EXPECT_FALSE(misc_all_digits("12a"));
    EXPECT_FALSE(misc_all_digits("-1"));
    EXPECT_FALSE(misc_all_digits(" 1"));
}

TEST(MiscTrim, LeadingAndTrailingBlanksGo)
{
    for (const auto &[text, trimmed] :
         {std::pair{"  a b  ", "a b"}, {"a", "a"}, {"", ""}, {"   ", ""}, {"\ta ", "\ta"}}) {
        std::string out = text;
        misc_trim(out);
        EXPECT_EQ(out, trimmed);
    }
}

} // namespace
