// The hotlist, its file, and two instances that share it.
#include "views/tree_hotlist.h"

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace tav;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Paths = std::vector<std::string>;

Paths sSeen; // what the tree was told
TreeView *const sTree = reinterpret_cast<TreeView *>(&sSeen);

class Hotlist : public testing::Test {
protected:
    void SetUp() override
    {
        char name[] = "/tmp/tav-hotlist-XXXXXX";
        dir = mkdtemp(name);
        file = dir + "/hotlist.001";
        tree_set_paths({});
        sSeen.clear();
        gTreeRows.added = [](TreeView *, const std::string &path) { sSeen.push_back('+' + path); };
        gTreeRows.removed = [](TreeView *, const std::string &path) {
            sSeen.push_back('-' + path);
        };
        gTreeRows.rebuilt = [](TreeView *) { sSeen.push_back("rebuilt"); };
    }
    void TearDown() override
    {
        gTreeRows = {};
        unlink(file.c_str());
        rmdir(dir.c_str());
    }
    void write(const std::string &text) { std::ofstream(file, std::ios::binary) << text; }
    std::string content()
    {
        std::ifstream in(file, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void load() { tree_load(nullptr, dir.c_str(), "hotlist.001"); }
    int save() { return tree_save(nullptr, dir.c_str(), "hotlist.001"); }
    std::string dir, file;
};

TEST_F(Hotlist, WithoutAFileItIsTheRootOnlyAndOneLineAfterExit)
{
    load();
    EXPECT_THAT(gTree.paths, ElementsAre("/"));
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "/\n");
}

TEST_F(Hotlist, RepeatedLinesLoadOnceAndAreWrittenOnce)
{
    write("/usr\n/tmp\n/usr\n");
    load();
    EXPECT_THAT(gTree.paths, ElementsAre("/usr", "/tmp"));
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "/usr\n/tmp\n");
}

TEST_F(Hotlist, AnEmptyFileIsNothing)
{
    write("");
    load();
    EXPECT_THAT(gTree.paths, IsEmpty());
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "");
}

TEST_F(Hotlist, AnEmptyLineIsAnEmptyPath)
{
    write("/usr\n\n/tmp\n");
    load();
    EXPECT_THAT(gTree.paths, ElementsAre("/usr", "", "/tmp"));
}

TEST_F(Hotlist, AnUnreadableFileIsTheRootAndIsLeftAloneUnlessWeChangeSomething)
{
    mkdir(file.c_str(), 0700); // cannot be read as a file by anyone
    load();
    EXPECT_THAT(gTree.paths, ElementsAre("/"));
    EXPECT_EQ(save(), -1);
    rmdir(file.c_str());
}

TEST_F(Hotlist, AFileThatCannotBeWrittenIsMinusOne)
{
    EXPECT_EQ(tree_save(nullptr, (dir + "/missing").c_str(), "hotlist.001"), -1);
}

TEST_F(Hotlist, AddingTwiceChangesNothingTheSecondTime)
{
    EXPECT_EQ(tree_add(sTree, "/usr"), 0);
    EXPECT_EQ(tree_add(sTree, "/usr"), -1);
    EXPECT_THAT(gTree.paths, ElementsAre("/usr"));
    EXPECT_THAT(sSeen, ElementsAre("+/usr"));
    EXPECT_EQ(tree_lookup("/usr"), 1);
    EXPECT_EQ(tree_lookup("/us"), 0);
}

TEST_F(Hotlist, ATrailingSlashMakesAnotherEntry)
{
    EXPECT_EQ(tree_add(nullptr, "/usr"), 0);
    EXPECT_EQ(tree_add(nullptr, "/usr/"), 0);
    EXPECT_THAT(gTree.paths, ElementsAre("/usr", "/usr/"));
}

TEST_F(Hotlist, APathWithANewlineIsRefused)
{
    EXPECT_EQ(tree_add(nullptr, "/a\nb"), -1);
    EXPECT_THAT(gTree.paths, IsEmpty());
}

TEST_F(Hotlist, RemovingMovesTheFollowingUpAndIgnoresTheUnknown)
{
    for (const char *path : {"/a", "/b", "/c"})
        tree_add(nullptr, path);
    EXPECT_EQ(tree_remove(sTree, "/a"), 0);
    EXPECT_EQ(tree_remove(sTree, "/x"), 0);
    EXPECT_THAT(gTree.paths, ElementsAre("/b", "/c"));
    EXPECT_THAT(sSeen, ElementsAre("-/a"));
    EXPECT_EQ(tree_lookup("/a"), 0);
}

TEST_F(Hotlist, AnEntryCanBeRemovedByItsOwnText)
{
    tree_add(nullptr, "/a");
    tree_remove(nullptr, gTree.paths[0].c_str());
    EXPECT_THAT(gTree.paths, IsEmpty());
}

TEST_F(Hotlist, SortingIsByBytes)
{
    for (const char *path : {"/usr", "/Tmp", "/home"})
        tree_add(nullptr, path);
    EXPECT_EQ(tree_sort(sTree), 0);
    EXPECT_THAT(gTree.paths, ElementsAre("/Tmp", "/home", "/usr"));
    EXPECT_THAT(sSeen, ElementsAre("rebuilt"));
}

TEST_F(Hotlist, LongLinesAreSeveralEntries)
{
    write(std::string(1024, 'a') + '\n' + std::string(1025, 'b') + "\n/c\n");
    load();
    EXPECT_THAT(gTree.paths,
                ElementsAre(std::string(1024, 'a'), std::string(1024, 'b'), "b", "/c"));
}

TEST_F(Hotlist, AMillionCharactersInALineAreEntriesOfALinesLength)
{
    std::string line;
    for (int i = 0; line.size() < 1000000; ++i)
        line += std::to_string(i);
    write(line);
    load();
    EXPECT_THAT(gTree.paths, SizeIs((line.size() + 1023) / 1024));
    std::string joined;
    for (const std::string &path : gTree.paths)
        joined += path;
    EXPECT_EQ(joined, line);
}

TEST_F(Hotlist, ANulEndsALineAndACarriageReturnBelongsToTheName)
{
    write(std::string("/a\0b\n", 5) + "/c\r\n/d");
    load();
    EXPECT_THAT(gTree.paths, ElementsAre("/a", "/c\r", "/d"));
}

TEST_F(Hotlist, AHundredThousandLinesComeBackAsTheyWere)
{
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "/d" + std::to_string(i) + '\n';
    write(text);
    load();
    EXPECT_THAT(gTree.paths, SizeIs(100000));
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), text);
}

TEST_F(Hotlist, SavingKeepsWhatAnotherInstanceAddedAndRemovedMeanwhile)
{
    write("/a\n/b\n/c\n");
    load();
    tree_add(nullptr, "/mine");
    tree_remove(nullptr, "/a");
    write("/a\n/theirs\n/c\n"); // the other one removed /b and added one
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "/theirs\n/c\n/mine\n");
    EXPECT_THAT(gTree.paths, ElementsAre("/theirs", "/c", "/mine"));
}

TEST_F(Hotlist, SavingAgainTellsNothingTwice)
{
    write("/a\n");
    load();
    tree_add(nullptr, "/b");
    EXPECT_EQ(save(), 0);
    write("/a\n/b\n/c\n");
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "/a\n/b\n/c\n");
}

TEST_F(Hotlist, AFileThatWentAwayMeanwhileIsWrittenWhole)
{
    write("/a\n/b\n");
    load();
    unlink(file.c_str());
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(content(), "/a\n/b\n");
}

TEST_F(Hotlist, ATreeIsRebuiltWhenSavingBroughtSomethingIn)
{
    write("/a\n");
    load();
    write("/a\n/b\n");
    EXPECT_EQ(tree_save(sTree, dir.c_str(), "hotlist.001"), 0);
    EXPECT_THAT(sSeen, ElementsAre("rebuilt"));
}

struct MergeCase {
    const char *name;
    Paths base, ours, theirs, result;
};

void PrintTo(const MergeCase &row, std::ostream *out) { *out << row.name; }

class HotlistMerge : public testing::TestWithParam<MergeCase> {};

TEST_P(HotlistMerge, Gives)
{
    const MergeCase &row = GetParam();
    EXPECT_EQ(tree_merge(row.base, row.ours, row.theirs), row.result);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HotlistMerge,
    testing::Values(
        MergeCase{"Nothing", {"a", "b"}, {"a", "b"}, {"a", "b"}, {"a", "b"}},
        MergeCase{"OurOrder", {"a", "b", "c"}, {"c", "a", "b"}, {"a", "b", "c"}, {"c", "a", "b"}},
        MergeCase{"OurOrderAndTheirAddition",
                  {"a", "b", "c"},
                  {"c", "a", "b"},
                  {"a", "x", "b", "c"},
                  {"c", "a", "x", "b"}},
        MergeCase{"TheirOrder", {"a", "b", "c"}, {"a", "b", "c"}, {"c", "b", "a"}, {"c", "b", "a"}},
        MergeCase{"OurAdditionKeepsItsPlace",
                  {"a", "b"},
                  {"a", "x", "b"},
                  {"a", "b", "y"},
                  {"a", "x", "b", "y"}},
        MergeCase{"OurOrderAndTheirAdditionAtTheEnd",
                  {"a", "b", "c"},
                  {"c", "a", "b"},
                  {"a", "b", "c", "x"},
                  {"c", "a", "b", "x"}},
        MergeCase{"OurAdditionInFront", {"a"}, {"x", "a"}, {"a"}, {"x", "a"}},
        MergeCase{"BothAddedTheSame", {"a"}, {"a", "x"}, {"x", "a"}, {"x", "a"}},
        MergeCase{"BothRemovedTheSame", {"a", "b"}, {"b"}, {"b"}, {"b"}},
        MergeCase{"TheyRemovedAll", {"a", "b"}, {"a", "b", "c"}, {}, {"c"}},
        MergeCase{"WeRemovedAll", {"a", "b"}, {}, {"a", "b", "c"}, {"c"}},
        MergeCase{"TheirRepeats", {"a"}, {"a"}, {"b", "a", "b"}, {"b", "a"}}),
    [](const auto &row) { return std::string(row.param.name); });

} // namespace
