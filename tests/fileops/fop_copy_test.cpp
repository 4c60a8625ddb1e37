// Copying files: every question and every text, what can fail on the way, and where the content
// goes.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

using FopCopy = FopTest;

TEST_F(FopCopy, a_tree_arrives_whole)
{
    dir.dir("src/d/e/f");
    dir.file("src/d/one", "1");
    dir.file("src/d/e/two", std::string(100'000, 'x'));
    dir.file("src/d/e/f/empty", "");
    dir.fifo("src/d/fifo");
    dir.link("src/d/link", "one");
    dir.link("src/d/broken", "nowhere");
    dir.file("src/plain", "p");
    driver.copy(dir, {"d", "plain"}, FOP_LINKS);
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
    EXPECT_EQ(driver.n_done, driver.n_items);
    EXPECT_EQ(driver.titles, (std::vector<std::string>{"Scanning", "Copying"}));
}

TEST_F(FopCopy, tells_of_every_item_once)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    dir.file("src/b", "2");
    driver.copy(dir, {"d", "b"});
    EXPECT_EQ(driver.done,
              (std::vector<std::string>{dir / "src/d", dir / "src/b", dir / "src/d/a"}));
}

TEST_F(FopCopy, names_of_any_bytes_arrive_unchanged)
{
    std::vector<std::string> names = {std::string(255, 'n'),
                                      "\xff\xfe invalid",
                                      "line\nend",
                                      "-rf",
                                      "'quote\"",
                                      "\xe2\x80\xae right to left",
                                      " "};
    for (const std::string &name : names)
        dir.file("src/" + name, name);
    driver.copy(dir, names);
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
}

TEST_F(FopCopy, an_existing_file_asks)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    driver.answers = {1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(driver.alerts[0].title, "Copy/Move");
    EXPECT_EQ(text(0), "The " + quoted("dst/a") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(driver.alerts[0].labels,
              (std::vector<std::string>{"&Skip", "&Overwrite", "Overwrite &All", "a&Bort"}));
    EXPECT_EQ(driver.alerts[0].on_return, 1);
    EXPECT_EQ(driver.alerts[0].on_close, 4);
    EXPECT_EQ(dir.read("dst/a"), "old");
    EXPECT_TRUE(driver.done.empty()) << "no word of what was skipped";
    driver.answers = {2};
    driver.copy(dir, {"a"});
    EXPECT_EQ(dir.read("dst/a"), "new");
}

TEST_F(FopCopy, overwrite_all_asks_once)
{
    for (const char *name : {"a", "b", "c"}) {
        dir.file(std::string("src/") + name, "new");
        dir.file(std::string("dst/") + name, "old");
    }
    driver.answers = {1, 3};
    driver.copy(dir, {"a", "b", "c"});
    EXPECT_EQ(driver.alerts.size(), 2u);
    EXPECT_EQ(dir.read("dst/a"), "old");
    EXPECT_EQ(dir.read("dst/b") + dir.read("dst/c"), "newnew");
    EXPECT_TRUE(driver.last_flags & FOP_OVERWRITE);
}

TEST_F(FopCopy, abort_at_an_existing_file_ends_the_job)
{
    dir.file("src/a", "new");
    dir.file("src/b", "new");
    dir.file("dst/a", "old");
    driver.answers = {4};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file old"}}));
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopCopy, a_file_with_several_names_is_overwritten_in_place)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "a longer old content");
    ASSERT_EQ(::link((dir / "dst/a").c_str(), (dir / "dst/other").c_str()), 0);
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("dst/other"), "new");
}

TEST_F(FopCopy, a_file_behind_a_link_is_overwritten_there)
{
    dir.file("src/a", "new");
    dir.file("real", "old");
    dir.link("dst/a", "../real");
    driver.answers = {2};
    driver.copy(dir, {"a"});
    EXPECT_EQ(dir.read("real"), "new");
    EXPECT_EQ(dir.all("dst")["a"], "link ../real");
}

TEST_F(FopCopy, an_empty_file_empties_what_it_overwrites_in_place)
{
    dir.file("src/a", "");
    dir.file("real", "old");
    dir.link("dst/a", "../real");
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("real"), "");
}

TEST_F(FopCopy, a_link_that_leads_nowhere_is_replaced_not_followed)
{
    dir.file("src/a", "new");
    dir.link("dst/a", "../made");
    driver.copy(dir, {"a"});
    EXPECT_FALSE(dir.exists("made"));
    EXPECT_EQ(dir.all("dst")["a"], "file new");
}

TEST_F(FopCopy, a_file_is_never_copied_into_itself)
{
    dir.file("src/a", "mine");
    dir.file("src/b", "b");
    ASSERT_EQ(::link((dir / "src/a").c_str(), (dir / "dst/a").c_str()), 0);
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.notices,
              std::vector<std::string>{"File Scan: Can't copy file(s) into itself."});
    EXPECT_EQ(dir.read("src/a"), "mine");
    EXPECT_FALSE(dir.exists("dst/b")) << "the job has ended";
    dir.link("same", "src");
    driver.run(FOP_COPY, dir / "src", {"b"}, dir / "same", FOP_OVERWRITE);
    EXPECT_EQ(driver.notices.size(), 2u) << "by another path";
    EXPECT_EQ(dir.read("src/b"), "b");
    dir.link("dst/b", "../src/b");
    driver.copy(dir, {"b"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.notices.size(), 3u) << "through a link in its place";
    EXPECT_EQ(dir.read("src/b"), "b");
}

TEST_F(FopCopy, a_directory_in_the_way_of_a_file_is_a_write_error)
{
    dir.file("src/a", "new");
    dir.dir("dst/a");
    driver.answers = {2, 1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(text(1), "Error writing " + quoted("dst/a") + "\nIs a directory\n");
}

TEST_F(FopCopy, what_a_killed_process_left_is_removed_by_the_next_that_needs_a_sibling)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    pid_t child = ::fork();
    if (child == 0) {
        static std::string sTemp;
        gFopSys.renameat = [](int, const char *, int, const char *, unsigned) -> int {
            ::_exit(0);
        };
        driver.copy(dir, {"a"}, FOP_OVERWRITE);
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(WEXITSTATUS(status), 0);
    ASSERT_EQ(dir.all("dst").size(), 2u) << "the process ended just before its file got its name";
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file new"}}));
}

TEST_F(FopCopy, what_appears_meanwhile_and_cannot_be_looked_at_is_asked_about)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        if (std::strcmp(path, "a") == 0 && flags == 0) {
            errno = EIO;
            return -1;
        }
        return gFopSysReal.fstatat(at, path, status, flags);
    };
    driver.answers = {1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(text(0), "The " + quoted("dst/a") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(dir.read("dst/a"), "old");
}

TEST_F(FopCopy, what_appears_meanwhile_is_asked_about)
{
    dir.file("src/a", "new");
    static const JobDir *sDir;
    sDir = &dir;
    gFopSys.linkfd = [](int fd, int at, const char *name) {
        if (!sDir->exists("dst/a"))
            sDir->file("dst/a", "other");
        return gFopSysReal.linkfd(fd, at, name);
    };
    driver.answers = {1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file other"}}));
}

TEST_F(FopCopy, a_write_error_is_asked_about_and_leaves_nothing)
{
    dir.file("src/a", "new");
    dir.file("src/b", "b");
    gFopSys.write = [](int fd, const void *bytes, size_t size) -> ssize_t {
        if (size == 3) {
            errno = EIO;
            return -1;
        }
        return gFopSysReal.write(fd, bytes, size);
    };
    driver.answers = {1};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(text(0), "Error writing " + quoted("dst/a") + "\nInput/output error\n");
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"b", "file b"}}));
}

TEST_F(FopCopy, a_read_error_is_asked_about_and_leaves_the_old_file)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    gFopSys.read = [](int, void *, size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    driver.answers = {2, 1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(text(1), "Error reading " + quoted("src/a") + "\nInput/output error\n");
    EXPECT_EQ(dir.read("dst/a"), "old");
}

// What is incomplete goes, but never what somebody else called that meanwhile.
TEST_F(FopCopy, a_failed_copy_takes_no_other_file_with_it)
{
    dir.file("src/a", std::string(100, 'x'));
    dir.file("src/b", std::string(100, 'x'));
    dir.file("dst/b", "old");
    ASSERT_EQ(::link((dir / "dst/b").c_str(), (dir / "dst/other").c_str()), 0);
    static const JobDir *sDir;
    static std::string sName;
    sDir = &dir;
    auto swapped = [] {
        sDir->file("dst/swapped", "another's");
        return ::rename((*sDir / "dst/swapped").c_str(), (*sDir / ("dst/" + sName)).c_str());
    };
    static int (*const sSwap)() = swapped;
    sName = "a"; // linked into place, and its close fails
    gFopSys.linkfd = [](int fd, int at, const char *path) {
        int result = gFopSysReal.linkfd(fd, at, path);
        gFopSys.close = [](int closed) {
            gFopSys.close = gFopSysReal.close;
            sSwap();
            gFopSysReal.close(closed);
            errno = EIO;
            return -1;
        };
        return result;
    };
    driver.answers = {1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(driver.texts(), "Error writing " + quoted("dst/a") + "\nInput/output error\n");
    EXPECT_EQ(dir.read("dst/a"), "another's");
    sName = "b"; // in place, and writing fails in the middle
    gFopSys.write = [](int fd, const void *bytes, size_t size) -> ssize_t {
        static int sCount;
        if (++sCount == 1)
            return gFopSysReal.write(fd, bytes, size / 2);
        sSwap();
        errno = EIO;
        return -1;
    };
    driver.answers = {1};
    driver.copy(dir, {"b"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("dst/b"), "another's");
}

TEST_F(FopCopy, an_error_that_comes_with_close_counts)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    static int sTarget;
    sTarget = -1;
    gFopSys.write = [](int fd, const void *bytes, size_t size) {
        sTarget = fd;
        return gFopSysReal.write(fd, bytes, size);
    };
    gFopSys.close = [](int fd) {
        gFopSysReal.close(fd);
        errno = EIO;
        return fd == sTarget ? -1 : 0;
    };
    driver.answers = {2, 1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(text(1), "Error writing " + quoted("dst/a") + "\nInput/output error\n");
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file old"}}));
}

struct NoSpace : FopCopy {
    static inline int sFull; // how many writes still fail
    NoSpace()
    {
        dir.file("src/a", "new");
        dir.file("src/b", "b");
        gFopSys.write = [](int fd, const void *bytes, size_t size) -> ssize_t {
            if (sFull > 0 && size == 3) {
                sFull--;
                errno = ENOSPC;
                return -1;
            }
            return gFopSysReal.write(fd, bytes, size);
        };
    }
};

TEST_F(NoSpace, asks_and_tries_again)
{
    sFull = 2;
    driver.answers = {1, 1};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(driver.alerts.size(), 2u);
    EXPECT_EQ(driver.alerts[0].title, "Write error");
    EXPECT_EQ(text(0), "Unable to write " + quoted("dst/a") + "\nNo space left on device\n");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Retry", "&Skip", "&Abort"}));
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
}

TEST_F(NoSpace, skip_removes_the_part_and_goes_on)
{
    sFull = 1;
    driver.answers = {2};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"b", "file b"}}));
}

TEST_F(NoSpace, abort_ends_the_job)
{
    sFull = 1;
    driver.answers = {3};
    driver.copy(dir, {"a", "b"});
    EXPECT_TRUE(dir.all("dst").empty());
    EXPECT_TRUE(driver.finished_done);
}

// The name "long" is too long for the destination.
void x_refuse_long_name()
{
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        if (std::strcmp(path, "long") == 0 && flags == 0) {
            errno = ENAMETOOLONG;
            return -1;
        }
        return gFopSysReal.fstatat(at, path, status, flags);
    };
}

TEST_F(FopCopy, a_name_too_long_is_asked_about_before_anything_is_copied)
{
    dir.file("src/long", "content");
    dir.dir("shown");
    x_refuse_long_name();
    static bool sRead;
    sRead = false;
    gFopSys.read = [](int fd, void *bytes, size_t size) {
        sRead = true;
        return gFopSysReal.read(fd, bytes, size);
    };
    driver.on_long_name = [&](const std::string &source, const std::string &dest, FopPlace &place) {
        EXPECT_FALSE(sRead);
        EXPECT_EQ(source, dir / "src/long");
        EXPECT_EQ(dest, dir / "dst/long");
        place.dir_fd = ::open((dir / "shown").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        place.name = "short";
        return true;
    };
    driver.copy(dir, {"long"});
    EXPECT_EQ(dir.read("shown/short"), "content");
    dir.file("shown/short", "mine");
    sRead = false;
    driver.copy(dir, {"long"});
    EXPECT_EQ(dir.read("shown/short"), "mine") << "nothing is replaced there";
    driver.on_long_name = nullptr;
    driver.copy(dir, {"long"});
    EXPECT_TRUE(driver.alerts.empty());
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(FopCopy, a_shorter_name_that_cannot_be_given_is_a_write_error)
{
    dir.file("src/long", "content");
    dir.dir("shown");
    x_refuse_long_name();
    gFopSys.linkfd = [](int, int, const char *) {
        errno = EIO;
        return -1;
    };
    driver.on_long_name = [&](const std::string &, const std::string &, FopPlace &place) {
        place.dir_fd = ::open((dir / "shown").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        place.name = "short";
        return true;
    };
    driver.answers = {1};
    driver.copy(dir, {"long"});
    EXPECT_EQ(text(0), "Error writing 'short'\nInput/output error\n");
    EXPECT_TRUE(dir.all("shown").empty());
}

TEST_F(FopCopy, an_aborted_job_asks_for_no_shorter_name)
{
    dir.file("src/long", "content");
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        errno = ENAMETOOLONG;
        return flags == 0 && std::strcmp(path, "long") == 0
                   ? -1
                   : gFopSysReal.fstatat(at, path, status, flags);
    };
    static FileOp *sJob;
    driver.on_created = [](FileOp &job) { sJob = &job; };
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        sJob->abort = std::strcmp(path, "long") == 0;
        return gFopSysReal.openat(at, path, flags, mode);
    };
    bool asked = false;
    driver.on_long_name = [&](auto &, auto &, FopPlace &) { return asked = true; };
    driver.copy(dir, {"long"});
    EXPECT_FALSE(asked);
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopCopy, a_source_that_cannot_be_opened_is_asked_about)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        if (std::strcmp(path, "a") == 0) {
            errno = EACCES;
            return -1;
        }
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.answers = {1};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(text(0), "Unable to open " + quoted("src/a") + "\nPermission denied\n");
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"b", "file 2"}}));
}

TEST_F(FopCopy, a_file_that_grew_raises_the_total)
{
    dir.file("src/a", "1");
    int last = -1;
    driver.on_update = [&](const FopUpdate &update) {
        if (update.title && std::strcmp(update.title, "Copying") == 0)
            dir.file("src/a", std::string(100'000, 'x'));
        last = std::max(last, update.percent);
    };
    driver.copy(dir, {"a"});
    EXPECT_EQ(driver.total_bytes, 100'000);
    EXPECT_EQ(last, 100);
    EXPECT_EQ(dir.status("dst/a").st_size, 100'000);
}

TEST_F(FopCopy, a_source_that_vanishes_is_asked_about)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    driver.on_update = [&](const FopUpdate &update) {
        if (update.title && std::strcmp(update.title, "Copying") == 0)
            ::unlink((dir / "src/a").c_str());
    };
    driver.answers = {1};
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(text(0), "Unable to stat " + quoted("src/a") + "\nNo such file or directory\n");
    EXPECT_EQ(driver.alerts[0].title, "Copy/Move");
    EXPECT_EQ(dir.read("dst/b"), "2");
}

TEST_F(FopCopy, abort_in_the_middle_of_a_file_leaves_nothing_of_it)
{
    dir.file("src/a", std::string(3 << 20, 'x'));
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    driver.on_update = [&](const FopUpdate &update) {
        if (!update.from_name && update.percent > 0)
            running->abort = 1;
    };
    driver.copy(dir, {"a"});
    EXPECT_TRUE(dir.all("dst").empty());
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopCopy, a_paused_job_stands_still_until_it_is_resumed)
{
    dir.file("src/a", "1");
    static FileOp *sJob;
    static int sTurns;
    sTurns = 0;
    gFopSys.delay = [](unsigned milliseconds) {
        if (milliseconds == FOP_PAUSE_MS && ++sTurns == 5)
            sJob->pause = 0;
    };
    driver.on_created = [&](FileOp &job) {
        sJob = &job;
        job.pause = 1;
    };
    driver.copy(dir, {"a"});
    EXPECT_EQ(sTurns, 5);
    EXPECT_EQ(dir.read("dst/a"), "1");
}

TEST_F(FopCopy, no_descriptor_stays_open)
{
    dir.dir("src/d/e/f/g/h/i/j/k");
    dir.file("src/d/e/f/g/h/i/j/k/a", "1");
    dir.dir("src/x/y");
    dir.file("src/x/y/b", "1");
    dir.file("dst/z", "old");
    dir.file("src/z", "new");
    int before = open_descriptors();
    driver.copy(dir, {"d", "x", "z"}, FOP_OVERWRITE);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
}

} // namespace
} // namespace tav
