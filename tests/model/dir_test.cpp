// Reading real directories: what is listed, with which status, and how entries are reused.
#include "model/dir.h"

#include "model/listing.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

class DirRead : public testing::Test {
protected:
    void TearDown() override
    {
        gDirHooks = {};
        gDirCalls = m_calls;
    }
    TestConfig m_config;
    TestDir m_dir;
    DirCalls m_calls = gDirCalls;
};

TEST_F(DirRead, TheOneListingBeginsWithoutAnything)
{
    EXPECT_EQ(gDir.current, -1);
    EXPECT_EQ(gDir.count, 0);
    EXPECT_EQ(gDir.ndirs, 0);
    EXPECT_EQ(gDir.nselected, 0);
    EXPECT_EQ(gDir.nseldirs, 0);
    EXPECT_EQ(gDir.spare, 0);
    EXPECT_EQ(gDir.total, 0u);
    EXPECT_FALSE(gDir.has_path);
}

TEST_F(DirRead, AnEmptyDirectoryYieldsNothing)
{
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 0);
    EXPECT_EQ(list.listing.total, 0u);
}

TEST_F(DirRead, DotNamesAreListedUnlessHidden)
{
    m_dir.file(".profile");
    m_dir.file("..odd");
    m_dir.file("...");
    m_dir.file("plain");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "... ..odd .profile plain ");
    m_config.record.flags |= CONFIG_HIDE_DOT;
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "plain ");
}

TEST_F(DirRead, TheFilterSparesDirectoriesButNotLinksToThem)
{
    m_dir.dir("src");
    m_dir.link("lnk", "src");
    m_dir.file("a.c");
    m_dir.file("a.o");
    TestListing list(m_dir.path(), "*.c");
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "a.c src ");
    EXPECT_EQ(list.listing.ndirs, 1);
}

TEST_F(DirRead, AnEmptyFilterMatchesOnlyTheEmptyName)
{
    m_dir.dir("src");
    m_dir.file("a.c");
    TestListing list(m_dir.path(), "");
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "src ");
}

TEST_F(DirRead, ALinkHasTheStatusOfItsTargetAndItsText)
{
    m_dir.file("target", 77);
    m_dir.link("lnk", "target");
    m_dir.dir("sub");
    m_dir.link("dirlink", "sub");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    const DirEntry *link = list.find("lnk");
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->flags, DIR_LINK);
    EXPECT_TRUE(S_ISREG(link->stat.st_mode));
    EXPECT_EQ(link->stat.st_size, 77);
    EXPECT_STREQ(link->link, "target");
    EXPECT_TRUE(dir_is_directory(list.at("dirlink")));
    EXPECT_EQ(list.listing.ndirs, 2);
}

TEST_F(DirRead, ALinkToAMissingFileIsBrokenAndKeepsItsOwnStatus)
{
    m_dir.link("lnk", "nowhere");
    m_dir.link("circle", "circle");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    for (const char *name : {"lnk", "circle"}) {
        const DirEntry *link = list.find(name);
        ASSERT_NE(link, nullptr);
        EXPECT_EQ(link->flags, 0x04 | 0x10);
        EXPECT_TRUE(S_ISLNK(link->stat.st_mode));
    }
    EXPECT_STREQ(list.at("lnk").link, "nowhere");
}

TEST_F(DirRead, ALinkTargetLongerThanTheBufferIsCutAndTerminated)
{
    std::string target(3000, 'x');
    m_dir.link("lnk", target);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(std::string(list.at("lnk").link), target.substr(0, DIR_LINK_SIZE - 1));
}

TEST_F(DirRead, AnUnreadableLinkTargetSaysSo)
{
    m_dir.link("lnk", "target");
    gDirCalls.link = [](int, const char *, char *, size_t) -> ssize_t {
        errno = EACCES;
        return -1;
    };
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_STREQ(list.at("lnk").link, "(unable to read link info)");
}

TEST_F(DirRead, ASizeOfFiveGibibytesCountsAsOne)
{
    m_dir.file("big", off_t(5) << 30);
    m_dir.file("small", 10);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.total, (uint64_t(1) << 30) + 10);
}

TEST_F(DirRead, TheTotalCarriesBeyond32Bits)
{
    for (const char *name : {"a", "b", "c"})
        m_dir.file(name, off_t(3) << 30);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.total, uint64_t(9) << 30);
}

TEST_F(DirRead, ReadingAgainReusesTheEntries)
{
    m_dir.many("f", 300);
    m_dir.link("l1", "f000000");
    m_dir.link("l2", "nowhere");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 302);
    uint64_t before = gDirAllocated;
    m_dir.remove("f000010");
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(list.read(), 0);
        EXPECT_EQ(list.listing.count, 301);
        EXPECT_EQ(gDirAllocated, before);
    }
    m_dir.file("f000010");
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 302);
    EXPECT_EQ(gDirAllocated, before);
    m_dir.file("one_more");
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(gDirAllocated, before + 1);
}

TEST_F(DirRead, AReusedEntryStartsWithoutOldLinkAndFlags)
{
    m_dir.link("lnk", "nowhere");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    list.listing.entries[0]->flags |= DIR_SELECTED | DIR_CURRENT;
    m_dir.remove("lnk");
    m_dir.file("plain");
    EXPECT_EQ(list.read(), 0);
    const DirEntry *entry = list.find("plain");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->flags, 0);
    ASSERT_NE(entry->link, nullptr) << "the buffer stays with the entry";
    EXPECT_STREQ(entry->link, "");
}

// Names delivered by hand, with what lies about them.
std::vector<const char *> sNames;
size_t sNext = 0;
ssize_t next_name(int, void *buffer, size_t)
{
    if (sNext == sNames.size())
        return 0;
    auto record = static_cast<dirent64 *>(buffer);
    const char *name = sNames[sNext++];
    memset(record, 0, sizeof *record);
    size_t size = offsetof(dirent64, d_name) + strlen(name) + 1;
    record->d_reclen = static_cast<unsigned short>((size + 7) & ~size_t(7));
    memcpy(record->d_name, name, strlen(name) + 1);
    return record->d_reclen;
}

TEST_F(DirRead, AnEntryLeftOverFromASkippedNameStartsEmptyToo)
{
    m_dir.link("lnk", "nowhere");
    m_dir.file("plain");
    sNames = {"lnk", "lnk", "plain"}; // the second is skipped after it was filled as a link
    sNext = 0;
    gDirCalls.getdents = next_name;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(nullptr), 0);
    EXPECT_EQ(list.names(), "lnk plain ");
    EXPECT_EQ(list.at("plain").flags, 0);
    EXPECT_STREQ(list.at("plain").link, "");
}

TEST_F(DirRead, AnEntryLeftInHandBecomesASpareWithoutItsLink)
{
    m_dir.link("lnk", "nowhere");
    sNames = {"lnk", "lnk"};
    sNext = 0;
    gDirCalls.getdents = next_name;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 1);
    ASSERT_EQ(list.listing.spare, 1);
    EXPECT_EQ(list.listing.entries[1]->link, nullptr);
    uint64_t before = gDirAllocated;
    sNext = 0;
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(gDirAllocated, before) << "the spare was used again";
}

TEST_F(DirRead, ANameDeliveredTwiceIsListedOnce)
{
    m_dir.dir("both");
    m_dir.file("other", 5);
    sNames = {"both", "other", "both", "other", "both"};
    sNext = 0;
    gDirCalls.getdents = next_name;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "both other ");
    EXPECT_EQ(list.listing.ndirs, 1);
    EXPECT_EQ(list.listing.total, dir_size32(list.at("both")) + 5u);
}

TEST_F(DirRead, DuplicatesAreFoundAmongThousands)
{
    m_dir.many("f", 1500);
    std::vector<std::string> names = m_dir.names();
    sNames.clear();
    for (int round = 0; round < 2; round++)
        for (const std::string &name : names)
            sNames.push_back(name.c_str());
    sNext = 0;
    gDirCalls.getdents = next_name;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 1500);
}

TEST_F(DirRead, ANameThatVanishedIsLeftOut)
{
    m_dir.file("here");
    sNames = {"gone", "here", "gone2"};
    sNext = 0;
    gDirCalls.getdents = next_name;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "here ");
}

TEST_F(DirRead, ANameTooLongForAnEntryIsLeftOutNotCut)
{
    static std::string longest(255, 'a');
    static std::string longer(256, 'a');
    m_dir.file(longest);
    sNames = {longer.c_str(), longest.c_str()};
    sNext = 0;
    gDirCalls.getdents = next_name;
    gDirCalls.status = [](int, const char *, struct stat *status, int) {
        *status = {};
        status->st_mode = S_IFREG;
        return 0;
    };
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), longest + " ");
}

TEST_F(DirRead, NamesOfAnyBytesAreListedAsTheyAre)
{
    const std::vector<std::string> names = {"a\nb",
                                            "a\tb",
                                            "\xff\xfe",
                                            "\xe2\x80\xae"
                                            "gnp",
                                            "<b>&amp;<u>",
                                            "-rf",
                                            " ",
                                            "$(x)`y`;z\"'",
                                            std::string(255, 'n')};
    for (const std::string &name : names)
        m_dir.file(name);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, static_cast<int>(names.size()));
    for (const std::string &name : names)
        EXPECT_NE(list.find(name.c_str()), nullptr) << name;
}

TEST_F(DirRead, AReadErrorKeepsWhatWasReadSoFar)
{
    m_dir.file("first");
    sNames = {"first"};
    sNext = 0;
    gDirCalls.getdents = [](int fd, void *buffer, size_t size) -> ssize_t {
        if (sNext == 0)
            return next_name(fd, buffer, size);
        errno = EIO;
        return -1;
    };
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "first ");
}

TEST_F(DirRead, AnInterruptedCallIsMadeAgain)
{
    m_dir.file("first");
    sNames = {"first"};
    sNext = 0;
    static bool sInterrupted;
    sInterrupted = false;
    gDirCalls.getdents = [](int fd, void *buffer, size_t size) -> ssize_t {
        if (!sInterrupted) {
            sInterrupted = true;
            errno = EINTR;
            return -1;
        }
        return next_name(fd, buffer, size);
    };
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "first ");
}

TEST_F(DirRead, FailsWithoutAPathAndEmptiesTheListing)
{
    m_dir.file("a", 10);
    m_dir.dir("b");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    list.listing.nselected = 1;
    list.listing.nseldirs = 1;
    list.listing.has_path = false;
    EXPECT_EQ(list.read(), -1);
    EXPECT_EQ(list.listing.count, 0);
    EXPECT_EQ(list.listing.ndirs, 0);
    EXPECT_EQ(list.listing.nselected, 0);
    EXPECT_EQ(list.listing.nseldirs, 1) << "the list sets this one back";
    EXPECT_EQ(list.listing.total, 0u);
    EXPECT_EQ(list.listing.current, -1);
    EXPECT_EQ(list.listing.spare, 2);
}

TEST_F(DirRead, FailsForAMissingDirectoryAndForAFile)
{
    m_dir.file("file");
    TestListing missing(m_dir.at("missing"));
    EXPECT_EQ(missing.read(), -1);
    EXPECT_EQ(errno, ENOENT);
    TestListing file(m_dir.at("file"));
    EXPECT_EQ(file.read(), -1);
    EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(DirRead, FailsForADirectoryThatMayNotBeReadOrEntered)
{
    m_dir.file("closed_parent");
    std::string unreadable = m_dir.dir("unreadable", 0711);
    std::string closed = m_dir.dir("closed", 0644);
    EXPECT_EQ(test_as_ordinary_user([&] {
                  TestListing one(unreadable);
                  TestListing other(closed);
                  chmod(unreadable.c_str(), 0311);
                  chmod(closed.c_str(), 0444);
                  return (one.read() == -1 && errno == EACCES) +
                         2 * (other.read() == -1 && errno == EACCES);
              }),
              3);
}

TEST_F(DirRead, MakesThePathTheWorkingDirectory)
{
    m_dir.dir("sub");
    TestListing list(m_dir.at("sub"));
    EXPECT_EQ(list.read(), 0);
    char *cwd = getcwd(nullptr, 0);
    EXPECT_STREQ(cwd, m_dir.at("sub").c_str());
    free(cwd);
}

TEST_F(DirRead, ADirectoryDeletedMeanwhileFailsThenNext)
{
    m_dir.dir("sub");
    TestListing list(m_dir.at("sub"));
    EXPECT_EQ(list.read(), 0);
    m_dir.remove("sub");
    EXPECT_EQ(list.read(), -1);
}

// What the hooks were told.
std::string sTold;
void (*sTick)();

void record_hooks()
{
    sTold.clear();
    sTick = nullptr;
    gDirHooks.status = [](const char *text) { sTold += std::string("status:") + text + ";"; };
    gDirHooks.progress_start = [](void (*tick)()) {
        sTick = tick;
        sTold += "start;";
    };
    gDirHooks.progress_show = [](const char *text) { sTold += std::string("show:") + text + ";"; };
    gDirHooks.progress_end = [] {
        sTick();
        sTold += "end;";
    };
}

TEST_F(DirRead, TellsItsProgress)
{
    m_dir.many("f", 7);
    record_hooks();
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(sTold, "status:Reading Directory;start;show:7 read;end;");
}

TEST_F(DirRead, LeavesTheProgressOnWhenItFails)
{
    record_hooks();
    TestListing list(m_dir.at("missing"));
    EXPECT_EQ(list.read(), -1);
    EXPECT_EQ(sTold, "status:Reading Directory;start;");
    sTick();
    EXPECT_TRUE(sTold.ends_with("show:0 read;"));
}

int sPending = 0;
int64_t sClock = 0;

// A clock that goes on by a millisecond per look.
int64_t tick_clock() { return ++sClock; }

TEST_F(DirRead, LetsEventsRunEveryFourMillisecondsNotPerName)
{
    m_dir.many("f", 1000);
    sPending = 0;
    gDirHooks.pending = [] {
        sPending++;
        return true;
    };
    gDirCalls.clock = tick_clock;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(nullptr), 0);
    EXPECT_EQ(list.listing.count, 1000);
    EXPECT_GE(sPending, 1000 / 5 - 1);
    EXPECT_LE(sPending, 1000 / 4);
}

TEST_F(DirRead, StoppedByTheEventsKeepsWhatWasReadSorted)
{
    m_dir.many("f", 300);
    sPending = 0;
    gDirHooks.pending = [] { return ++sPending < 10; };
    gDirCalls.clock = tick_clock;
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_GE(list.listing.count, 10 * 4 - 2) << "four looks at the clock each, two for . and ..";
    EXPECT_LE(list.listing.count, 10 * 5);
    for (int i = 1; i < list.listing.count; i++)
        EXPECT_LT(dir_cmp_name(*list.listing.entries[static_cast<size_t>(i - 1)],
                               *list.listing.entries[static_cast<size_t>(i)]),
                  0);
}

TEST_F(DirRead, TheArrayGrowsBy128AndSparesStayBehindTheList)
{
    m_dir.many("f", 130);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.entries.size(), 256u);
    list.listing.filespec = "f00000?";
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.listing.count, 10);
    EXPECT_EQ(list.listing.spare, 120);
    for (size_t i = 0; i < list.listing.entries.size(); i++)
        EXPECT_EQ(list.listing.entries[i] != nullptr, i < 130) << i;
}

TEST_F(DirRead, ReleaseFreesListedAndSpareAndKeepsPathAndFilter)
{
    m_dir.many("f", 20);
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    list.listing.filespec = "f000001";
    EXPECT_EQ(list.read(), 0);
    dir_release(list.listing);
    EXPECT_EQ(list.listing.count, 0);
    EXPECT_EQ(list.listing.spare, 0);
    EXPECT_EQ(list.listing.path, m_dir.path());
    EXPECT_EQ(list.listing.filespec, "f000001");
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "f000001 ");
}

TEST_F(DirRead, EveryKindOfEntryIsListed)
{
    m_dir.fifo("pipe");
    m_dir.dir("dir");
    m_dir.file("file");
    m_dir.link("link", "/dev/null");
    TestListing list(m_dir.path());
    EXPECT_EQ(list.read(), 0);
    EXPECT_EQ(list.names(), "dir file link pipe ");
    EXPECT_TRUE(S_ISFIFO(list.at("pipe").stat.st_mode));
    EXPECT_TRUE(S_ISCHR(list.at("link").stat.st_mode));
}

} // namespace
