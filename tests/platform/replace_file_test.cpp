// Replacing files: whole or not at all, through links, without leaving anything behind.
#include "platform/replace_file.h"

#include "testdir.h"

#include <csignal>
#include <ctime>
#include <gtest/gtest.h>

using namespace tav;

namespace {

class ReplaceFile : public testing::Test {
protected:
    ~ReplaceFile() override { gReplaceCalls = m_calls; }
    int write(const char *name, std::string_view content)
    {
        return replace_file_write(m_dir.at(name).c_str(), content);
    }
    mode_t mode(const char *name) const { return m_dir.status(name).st_mode & 07777; }
    TestDir m_dir;
    ReplaceCalls m_calls = gReplaceCalls;
};

TEST_F(ReplaceFile, ANewFileHasTheUsualMode)
{
    mode_t mask = umask(027);
    EXPECT_EQ(write("f", "content"), 0);
    umask(mask);
    EXPECT_EQ(m_dir.read("f"), "content");
    EXPECT_EQ(mode("f"), 0640u);
    EXPECT_EQ(m_dir.names(), std::vector<std::string>{"f"});
}

TEST_F(ReplaceFile, AnExistingFileKeepsItsMode)
{
    m_dir.text("f", "a longer old content", 0604);
    EXPECT_EQ(write("f", "new"), 0);
    EXPECT_EQ(m_dir.read("f"), "new");
    EXPECT_EQ(mode("f"), 0604u);
    EXPECT_EQ(write("f", ""), 0);
    EXPECT_EQ(m_dir.read("f"), "");
}

TEST_F(ReplaceFile, WhoHasTheOldFileOpenStillReadsIt)
{
    m_dir.text("f", "old");
    FILE *old = fopen(m_dir.at("f").c_str(), "r");
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(write("f", "new"), 0);
    char text[4] = "";
    EXPECT_EQ(fread(text, 1, 3, old), 3u);
    EXPECT_STREQ(text, "old");
    fclose(old);
}

TEST_F(ReplaceFile, ThroughLinksTheirTargetIsReplaced)
{
    m_dir.dir("real");
    m_dir.text("real/f", "old");
    m_dir.link("one", "real/two");
    m_dir.link("real/two", "f");
    EXPECT_EQ(write("one", "new"), 0);
    EXPECT_EQ(m_dir.read("real/f"), "new");
    EXPECT_TRUE(S_ISLNK(m_dir.status("one").st_mode));
    EXPECT_EQ(m_dir.names(), (std::vector<std::string>{"one", "real"}));
    EXPECT_EQ(m_dir.names("real"), (std::vector<std::string>{"f", "two"}));
}

TEST_F(ReplaceFile, ALinkToNothingYetGetsItsTarget)
{
    m_dir.dir("real");
    m_dir.link("one", m_dir.at("real/f"));
    EXPECT_EQ(write("one", "new"), 0);
    EXPECT_EQ(m_dir.read("real/f"), "new");
}

TEST_F(ReplaceFile, LinksInACircleFail)
{
    m_dir.link("a", "b");
    m_dir.link("b", "a");
    EXPECT_EQ(write("a", "x"), -1);
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(ReplaceFile, ARelativePathWorks)
{
    ASSERT_EQ(chdir(m_dir.path().c_str()), 0);
    EXPECT_EQ(replace_file_write("f", "x"), 0);
    EXPECT_EQ(m_dir.read("f"), "x");
}

TEST_F(ReplaceFile, AFileThatMayNotBeWrittenIsLeftAlone)
{
    m_dir.text("f", "old", 0444);
    m_dir.mode(".", 0777);
    EXPECT_EQ(test_as_ordinary_user([&] { return write("f", "new") == -1 && errno == EACCES; }), 1);
    EXPECT_EQ(m_dir.read("f"), "old");
    EXPECT_EQ(m_dir.names(), std::vector<std::string>{"f"});
}

TEST_F(ReplaceFile, ADirectoryThatMayNotBeWrittenFails)
{
    EXPECT_EQ(test_as_ordinary_user([&] {
                  chmod(m_dir.path().c_str(), 0555);
                  return write("f", "new") == -1 && errno == EACCES;
              }),
              1);
    EXPECT_TRUE(m_dir.names().empty());
}

TEST_F(ReplaceFile, AMissingDirectoryFails)
{
    EXPECT_EQ(write("missing/f", "x"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(write("", "x"), -1);
}

TEST_F(ReplaceFile, ADirectoryIsNotReplaced)
{
    m_dir.dir("d");
    EXPECT_EQ(write("d", "x"), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_TRUE(S_ISDIR(m_dir.status("d").st_mode));
}

TEST_F(ReplaceFile, ADeviceIsWrittenToNotReplaced)
{
    m_dir.link("null", "/dev/null");
    m_dir.link("full", "/dev/full");
    EXPECT_EQ(write("null", "x"), 0);
    EXPECT_EQ(write("full", "x"), -1);
    EXPECT_EQ(errno, ENOSPC);
    struct stat status;
    EXPECT_EQ(stat("/dev/null", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    EXPECT_EQ(stat("/dev/full", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_F(ReplaceFile, APipeWithoutAReaderFailsAtOnce)
{
    m_dir.fifo("p");
    EXPECT_EQ(write("p", "x"), -1);
    EXPECT_EQ(errno, ENXIO);
    EXPECT_TRUE(S_ISFIFO(m_dir.status("p").st_mode));
}

// A disk that fails at one of the calls.
struct Fault {
    const char *name;
    ReplaceCalls calls;
    int error;
};
ssize_t write_full(int fd, const void *data, size_t size)
{
    if (size > 3)
        return ::write(fd, data, 3); // a little still fits
    errno = ENOSPC;
    return -1;
}
int sync_error(int)
{
    errno = EIO;
    return -1;
}
int rename_error(const char *, const char *)
{
    errno = EROFS;
    return -1;
}
const Fault FAULTS[] = {{"full", {write_full, fsync, rename}, ENOSPC},
                        {"sync", {::write, sync_error, rename}, EIO},
                        {"rename", {::write, fsync, rename_error}, EROFS}};

TEST_F(ReplaceFile, AFaultAnywhereLeavesTheOldContentAndNothingElse)
{
    for (const Fault &fault : FAULTS) {
        m_dir.text("f", "old");
        gReplaceCalls = fault.calls;
        EXPECT_EQ(write("f", "new content"), -1) << fault.name;
        EXPECT_EQ(errno, fault.error) << fault.name;
        EXPECT_EQ(write("fresh", "new content"), -1) << fault.name;
        gReplaceCalls = m_calls;
        EXPECT_EQ(m_dir.read("f"), "old") << fault.name;
        EXPECT_EQ(m_dir.names(), std::vector<std::string>{"f"}) << fault.name;
    }
}

TEST_F(ReplaceFile, AFileSystemWithoutSyncIsNoFault)
{
    gReplaceCalls.fsync = [](int) {
        errno = EINVAL;
        return -1;
    };
    EXPECT_EQ(write("f", "x"), 0);
    EXPECT_EQ(m_dir.read("f"), "x");
}

TEST_F(ReplaceFile, AnInterruptedOrPartialWriteGoesOn)
{
    static int sCalls;
    sCalls = 0;
    gReplaceCalls.write = [](int fd, const void *data, size_t size) -> ssize_t {
        if (sCalls++ % 2 == 0) {
            errno = EINTR;
            return -1;
        }
        return ::write(fd, data, size > 2 ? 2 : size);
    };
    EXPECT_EQ(write("f", "some content"), 0);
    EXPECT_EQ(m_dir.read("f"), "some content");
}

TEST_F(ReplaceFile, KilledAtAnyWriteTheOldOrTheNewContentIsThere)
{
    static int sLeft;
    std::string content(20, 'n');
    int completed = 0;
    for (int at = 0; at < 14; at++) {
        m_dir.text("f", "old");
        pid_t child = fork();
        if (child == 0) {
            sLeft = at;
            gReplaceCalls.write = [](int fd, const void *data, size_t) -> ssize_t {
                if (sLeft-- == 0)
                    kill(getpid(), SIGKILL);
                return ::write(fd, data, 2);
            };
            gReplaceCalls.fsync = [](int fd) {
                if (sLeft-- == 0)
                    kill(getpid(), SIGKILL);
                return ::fsync(fd);
            };
            write("f", content);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        std::string found = m_dir.read("f");
        EXPECT_TRUE(found == "old" || found == content) << found;
        completed += WIFEXITED(status);
    }
    EXPECT_GT(completed, 0);
    EXPECT_LT(completed, 14);
}

TEST_F(ReplaceFile, WhatAKilledProcessLeftIsRemovedByTheNextSave)
{
    const pid_t child = fork();
    if (child == 0) {
        gReplaceCalls.fsync = [](int) { return kill(getpid(), SIGKILL); };
        write("f", "never finished");
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(m_dir.names().size(), 1u) << "the kill left nothing, so there is nothing to test";
    const std::string left = m_dir.names()[0];
    EXPECT_EQ(write("f", "young"), 0);
    EXPECT_TRUE(m_dir.exists(left)) << "it could be that of a process on another machine";
    m_dir.mtime(left, time(nullptr) - 120);
    EXPECT_EQ(write("f", "old"), 0);
    EXPECT_EQ(m_dir.names(), std::vector<std::string>{"f"});
}

TEST_F(ReplaceFile, OnlyFilesOfProcessesThatAreGoneAreRemoved)
{
    const std::string living = ".tav-" + std::to_string(getpid()) + "-77.new";
    const std::vector<std::string> kept = {living,         ".tav--5-1.new",  ".tav-5.new",
                                           ".tav-5-x.new", ".tav-5-1.newer", ".tav-05-1.new"};
    for (const std::string &name : kept) {
        m_dir.text(name, "");
        m_dir.mtime(name, time(nullptr) - 3600);
    }
    m_dir.dir(".tav-999999999-1.new");
    m_dir.mtime(".tav-999999999-1.new", time(nullptr) - 3600);
    EXPECT_EQ(write("f", "new"), 0);
    for (const std::string &name : kept)
        EXPECT_TRUE(m_dir.exists(name)) << name;
    EXPECT_TRUE(m_dir.exists(".tav-999999999-1.new"));
}

TEST_F(ReplaceFile, ReadingTakesTheWholeFileUpToTheLimit)
{
    std::string big(100000, 'b');
    m_dir.text("f", big);
    std::string content = "before";
    EXPECT_EQ(replace_file_read(m_dir.at("f").c_str(), content, big.size()), 0);
    EXPECT_EQ(content, big);
    EXPECT_EQ(replace_file_read(m_dir.at("f").c_str(), content, big.size() - 1), -1);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(replace_file_read(m_dir.at("missing").c_str(), content, 10), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(content.empty());
    EXPECT_EQ(replace_file_read(m_dir.path().c_str(), content, 10), -1);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(replace_file_read("/dev/zero", content, 1000), -1);
    EXPECT_EQ(errno, EFBIG);
}

} // namespace
