// Moving: the rename pass, the copy across file systems, and which sources may go.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

using FopMove = FopTest;

TEST_F(FopMove, renames_within_a_file_system_and_never_copies)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    dir.file("src/b", "2");
    auto before = dir.all("src");
    ino_t inode = dir.status("src/b").st_ino;
    gFopSys.read = [](int, void *, size_t) -> ssize_t { std::abort(); };
    driver.move(dir, {"d", "b"});
    EXPECT_EQ(dir.all("dst"), before);
    EXPECT_TRUE(dir.all("src").empty());
    EXPECT_EQ(dir.status("dst/b").st_ino, inode);
    EXPECT_EQ(driver.done, (std::vector<std::string>{dir / "src/d", dir / "src/b"}));
    EXPECT_EQ(driver.last_flags & ~1u, 0xFFFFFFFEu) << "all bits but the first";
    EXPECT_EQ(driver.titles, (std::vector<std::string>{"Scanning", "Moving"}));
}

TEST_F(FopMove, into_its_own_directory_is_refused)
{
    dir.file("src/a", "1");
    driver.run(FOP_MOVE, dir / "src", {"a"}, dir / "src");
    EXPECT_EQ(driver.notices,
              std::vector<std::string>{"File Scan: Can't move file(s) into itself."});
    EXPECT_FALSE(driver.finished_done);
    dir.link("same", "src");
    driver.run(FOP_MOVE, dir / "src", {"a"}, dir / "same", FOP_OVERWRITE);
    EXPECT_EQ(driver.notices.size(), 2u) << "by another path";
    EXPECT_EQ(dir.read("src/a"), "1");
}

TEST_F(FopMove, onto_another_name_of_the_same_file_is_refused)
{
    dir.file("src/a", "1");
    ASSERT_EQ(::link((dir / "src/a").c_str(), (dir / "dst/a").c_str()), 0);
    driver.move(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.notices,
              std::vector<std::string>{"File Scan: Can't move file(s) into itself."});
    EXPECT_EQ(dir.read("src/a"), "1");
}

TEST_F(FopMove, a_link_never_replaces_what_it_points_to)
{
    dir.file("dst/a", "only copy");
    dir.link("src/a", "../dst/a");
    driver.move(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.notices.size(), 1u);
    EXPECT_EQ(dir.read("dst/a"), "only copy");
}

TEST_F(FopMove, an_existing_file_asks)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    driver.answers = {1};
    driver.move(dir, {"a"});
    EXPECT_EQ(driver.alerts[0].title, "Move");
    EXPECT_EQ(text(0), "The " + quoted("dst/a") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(driver.alerts[0].labels,
              (std::vector<std::string>{"&Skip", "&Overwrite", "Overwrite &All", "a&Bort"}));
    EXPECT_EQ(dir.read("src/a") + dir.read("dst/a"), "newold");
    EXPECT_TRUE(driver.done.empty());
    driver.answers = {2};
    driver.move(dir, {"a"});
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_FALSE(dir.exists("src/a"));
}

TEST_F(FopMove, abort_ends_the_job_without_done)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    driver.answers = {4};
    driver.move(dir, {"a"});
    EXPECT_EQ(dir.read("src/a") + dir.read("dst/a"), "newold");
    EXPECT_FALSE(driver.finished_done);
}

TEST_F(FopMove, after_the_first_rename_nothing_is_asked_any_more)
{
    dir.file("src/a", "1");
    dir.file("src/b", "new");
    dir.file("dst/b", "old");
    driver.move(dir, {"a", "b"});
    EXPECT_TRUE(driver.alerts.empty());
    EXPECT_EQ(dir.read("dst/b"), "new");
}

TEST_F(FopMove, a_skip_silences_later_questions_too)
{
    for (const char *name : {"a", "b"}) {
        dir.file(std::string("src/") + name, "new");
        dir.file(std::string("dst/") + name, "old");
    }
    driver.answers = {1};
    driver.move(dir, {"a", "b"});
    EXPECT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(dir.read("dst/a") + dir.read("dst/b"), "oldnew");
}

// What cannot be looked at may be anybody's only copy.
TEST_F(FopMove, what_cannot_be_looked_at_is_not_replaced_unasked)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        static int sCount;
        if (std::strcmp(path, "a") == 0 && flags == 0 && ++sCount == 1) {
            errno = EIO;
            return -1;
        }
        return gFopSysReal.fstatat(at, path, status, flags);
    };
    driver.answers = {1};
    driver.move(dir, {"a"});
    EXPECT_EQ(text(0), "The " + quoted("dst/a") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(dir.read("src/a") + dir.read("dst/a"), "newold");
}

TEST_F(FopMove, where_it_cannot_be_asked_not_to_replace_a_name_must_be_known_to_be_free)
{
    static int sError;
    dir.file("src/a", "new");
    sys_replacing_renames();
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        if (std::strcmp(path, "a") != 0 || flags != 0 || sError == 0)
            return gFopSysReal.fstatat(at, path, status, flags);
        errno = sError;
        return -1;
    };
    dir.file("dst/a", "old");
    sError = EIO;
    driver.answers = {1};
    driver.move(dir, {"a"});
    EXPECT_EQ(text(0), "The " + quoted("dst/a") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(dir.read("src/a") + dir.read("dst/a"), "newold");
    sError = 0;
    ::unlink((dir / "dst/a").c_str());
    driver.move(dir, {"a"});
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_FALSE(dir.exists("src/a"));
}

TEST_F(FopMove, a_directory_is_merged_into_an_existing_one)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    dir.dir("dst/d");
    dir.file("dst/d/b", "2");
    driver.answers = {2};
    driver.move(dir, {"d"});
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{
                                  {"d", "directory"}, {"d/a", "file 1"}, {"d/b", "file 2"}}));
    EXPECT_TRUE(dir.all("src").empty());
}

struct Across : FopMove {
    Across() { sys_two_file_systems(); }
};

TEST_F(Across, copies_then_removes_the_sources)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.file("src/d/b", "2");
    dir.link("src/l", "nowhere");
    dir.fifo("src/f");
    auto before = dir.all("src");
    driver.move(dir, {"d", "l", "f"}, FOP_LINKS);
    EXPECT_EQ(dir.all("dst"), before);
    EXPECT_TRUE(dir.all("src").empty());
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
}

// What the rename pass asked about and could not rename is asked about again by the copy pass.
TEST_F(Across, overwriting_one_is_asked_for_in_both_passes)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    driver.answers = {2, 2};
    driver.move(dir, {"a"});
    ASSERT_EQ(driver.alerts.size(), 2u);
    EXPECT_EQ(driver.alerts[0].title + " " + driver.alerts[1].title, "Move Copy/Move");
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_FALSE(dir.exists("src/a"));
}

TEST_F(Across, a_skip_silences_later_questions_too)
{
    for (const char *name : {"a", "b"}) {
        dir.file(std::string("src/") + name, "new");
        dir.file(std::string("dst/") + name, "old");
    }
    driver.answers = {1};
    driver.move(dir, {"a", "b"});
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(driver.alerts[0].title, "Move");
    EXPECT_EQ(dir.read("dst/a") + dir.read("dst/b"), "oldnew");
    EXPECT_EQ(dir.all("src"), (std::map<std::string, std::string>{{"a", "file new"}}));
}

TEST_F(Across, overwriting_all_is_asked_for_once)
{
    for (const char *name : {"a", "b"}) {
        dir.file(std::string("src/") + name, "new");
        dir.file(std::string("dst/") + name, "old");
    }
    driver.answers = {3};
    driver.move(dir, {"a", "b"});
    EXPECT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(dir.read("dst/a") + dir.read("dst/b"), "newnew");
    EXPECT_TRUE(dir.all("src").empty());
}

TEST_F(Across, asks_about_links_with_its_own_words)
{
    dir.link("src/l", "nowhere");
    driver.answers = {2};
    driver.move(dir, {"l"});
    EXPECT_EQ(driver.alerts[0].title, "Move");
    EXPECT_EQ(text(0), "Symbolic links detected in the file list\nWhat do you want to move ?");
}

TEST_F(Across, syncs_the_destination_once_before_the_first_source_goes)
{
    static std::string sOrder;
    sOrder.clear();
    for (const char *name : {"a", "b"})
        dir.file(std::string("src/") + name, "1");
    gFopSys.syncfs = [](int fd) {
        sOrder += 's';
        return gFopSysReal.syncfs(fd);
    };
    gFopSys.unlinkat = [](int at, const char *path, int flags) {
        sOrder += 'u';
        return gFopSysReal.unlinkat(at, path, flags);
    };
    driver.move(dir, {"a", "b"});
    EXPECT_EQ(sOrder, "suu");
}

TEST_F(Across, keeps_every_source_when_the_sync_fails)
{
    dir.file("src/a", "1");
    gFopSys.syncfs = [](int) {
        errno = EIO;
        return -1;
    };
    driver.answers = {1};
    driver.move(dir, {"a"});
    EXPECT_EQ(text(0), "Error writing " + quoted("dst") + "\nInput/output error\n");
    EXPECT_EQ(dir.read("src/a"), "1");
}

TEST_F(Across, keeps_what_was_skipped_or_failed)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    dir.file("src/b", "b");
    dir.file("src/empty", "");
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        static int sCount;
        if ((flags & O_TMPFILE) == O_TMPFILE && ++sCount == 2) {
            errno = EACCES;
            return -1;
        }
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.on_alert = [](const FopAlert &) { return 1; };
    driver.move(dir, {"b", "empty"});
    EXPECT_EQ(text(0), "Error writing " + quoted("dst/empty") + "\nPermission denied\n");
    EXPECT_TRUE(dir.exists("src/empty")) << "an empty file that was not copied stays, too";
    EXPECT_FALSE(dir.exists("src/b"));
    driver.alerts.clear();
    driver.move(dir, {"a"});
    EXPECT_EQ(dir.read("src/a") + dir.read("dst/a"), "newold");
}

TEST_F(Across, keeps_a_source_that_changed_while_it_was_copied)
{
    dir.file("src/a", std::string(200'000, 'x'));
    driver.on_update = [&](const FopUpdate &update) {
        if (!update.from_name && update.percent == 100)
            dir.file("src/a", "changed");
    };
    driver.answers = {1};
    driver.move(dir, {"a"});
    EXPECT_EQ(text(0), "Error reading " + quoted("src/a") + "\nDevice or resource busy\n");
    EXPECT_EQ(dir.read("src/a"), "changed");
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(Across, keeps_a_source_that_changed_after_it_was_copied)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name && std::strstr(update.from_name, "/src/b"))
            dir.file("src/a", "written later");
    };
    driver.answers = {1};
    driver.move(dir, {"a", "b"});
    EXPECT_EQ(text(0), "Error reading " + quoted("src/a") + "\nDevice or resource busy\n");
    EXPECT_EQ(dir.read("src/a"), "written later");
    EXPECT_EQ(dir.read("dst/a"), "1");
    EXPECT_FALSE(dir.exists("src/b"));
}

TEST_F(Across, removes_a_followed_link_alone)
{
    dir.dir("other/sub");
    dir.file("other/a", "1");
    dir.file("other/sub/b", "2");
    dir.file("file", "3");
    dir.link("src/l", "../other");
    dir.link("src/m", "../file");
    driver.move(dir, {"l", "m"}, FOP_FOLLOW);
    EXPECT_EQ(dir.read("dst/l/sub/b"), "2");
    EXPECT_EQ(dir.read("dst/m"), "3");
    EXPECT_TRUE(dir.all("src").empty());
    EXPECT_EQ(dir.read("other/a") + dir.read("other/sub/b") + dir.read("file"), "123");
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
}

TEST_F(Across, an_aborted_move_removes_only_what_was_copied)
{
    dir.file("src/a", "1");
    dir.dir("src/d");
    dir.file("src/d/b", "2");
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name && std::strstr(update.from_name, "/d/b"))
            running->abort = 1;
    };
    driver.move(dir, {"a", "d"});
    EXPECT_FALSE(dir.exists("src/a"));
    EXPECT_EQ(dir.read("src/d/b"), "2");
    EXPECT_FALSE(dir.exists("dst/d/b"));
    EXPECT_TRUE(driver.alerts.empty()) << "what stays because of the abort is no failure";
}

// With its times, owner and attributes still to come, a directory is not copied.
TEST_F(Across, a_directory_that_an_abort_left_unfinished_stays)
{
    dir.dir("src/d/empty");
    dir.dir("src/f");
    dir.file("src/f/a", "1");
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    for (const char *last : {"/d/empty", "/f/a"}) {
        driver.on_update = [&](const FopUpdate &update) {
            if (update.from_name && std::strstr(update.from_name, last) &&
                dir.exists("dst" + std::string(last)))
                running->abort = 1; // it is there, the directory is still to be finished
        };
        driver.move(dir, {last[1] == 'd' ? "d" : "f"});
    }
    EXPECT_EQ(dir.all("src"),
              (std::map<std::string, std::string>{
                  {"d", "directory"}, {"d/empty", "directory"}, {"f", "directory"}}));
    EXPECT_EQ(dir.read("dst/f/a"), "1");
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
}

TEST_F(Across, a_directory_that_could_not_be_finished_stays_with_either_answer)
{
    gFopSys.fchmodat = [](int, const char *, mode_t) {
        errno = EIO;
        return -1;
    };
    for (int answer : {1, 2}) {
        dir.dir("src/d");
        dir.file("src/d/a", "1");
        driver.alerts.clear();
        driver.answers = {answer};
        driver.move(dir, {"d"}, FOP_OVERWRITE);
        EXPECT_EQ(driver.texts(), "Error writing " + quoted("dst/d") + "\nInput/output error\n");
        EXPECT_TRUE(dir.exists("src/d")) << "answer " << answer;
        EXPECT_EQ(dir.read("dst/d/a"), "1");
    }
}

TEST_F(Across, keeps_a_link_or_directory_whose_times_could_not_be_set)
{
    dir.link("src/l", "nowhere");
    dir.dir("src/d");
    gFopSys.utimensat = [](int, const char *, const timespec *, int) {
        errno = EIO;
        return -1;
    };
    driver.on_alert = [](const FopAlert &) { return 1; };
    driver.move(dir, {"l", "d"}, FOP_LINKS);
    EXPECT_EQ(text(0), "Error writing " + quoted("dst/l") + "\nInput/output error\n");
    EXPECT_EQ(text(1), "Error writing " + quoted("dst/d") + "\nInput/output error\n");
    EXPECT_EQ(dir.all("src"),
              (std::map<std::string, std::string>{{"l", "link nowhere"}, {"d", "directory"}}));
}

// Whoever opens a file system later is not told of the errors that others were told of.
TEST_F(Across, the_sync_is_open_before_the_first_byte_is_written)
{
    static std::string sOrder;
    static int sSyncFd;
    sOrder.clear();
    dir.file("src/a", "1");
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        const int fd = gFopSysReal.openat(at, path, flags, mode);
        if (std::strcmp(path, ".") == 0 && flags == (O_RDONLY | O_DIRECTORY)) {
            sOrder += 'o';
            sSyncFd = fd;
        }
        return fd;
    };
    gFopSys.clone = [](int, int) {
        errno = EOPNOTSUPP;
        return -1;
    };
    gFopSys.write = [](int fd, const void *bytes, size_t size) {
        sOrder += 'w';
        return gFopSysReal.write(fd, bytes, size);
    };
    gFopSys.syncfs = [](int fd) {
        sOrder += fd == sSyncFd ? 's' : '?';
        return 0;
    };
    driver.move(dir, {"a"});
    EXPECT_EQ(sOrder, "ows");
}

TEST_F(Across, a_source_replaced_by_another_file_stays)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name && std::strstr(update.from_name, "/src/b")) {
            dir.file("src/new", "1");
            ::rename((dir / "src/new").c_str(), (dir / "src/a").c_str());
        }
    };
    driver.answers = {1};
    driver.move(dir, {"a", "b"});
    EXPECT_TRUE(dir.exists("src/a"));
}

} // namespace
} // namespace tav
