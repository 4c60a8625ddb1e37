// Deleting, and the scan with its questions.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

using FopDelete = FopTest;

TEST_F(FopDelete, removes_the_deepest_first_and_the_selected_last)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.file("src/d/b", "2");
    driver.remove(dir, {"d"});
    EXPECT_TRUE(dir.all("src").empty());
    ASSERT_EQ(driver.done.size(), 4u);
    EXPECT_EQ(driver.done.front(), dir / "src/d/e/a");
    EXPECT_EQ(driver.done.back(), dir / "src/d");
    EXPECT_EQ(driver.titles, (std::vector<std::string>{"Scanning", "Deleting"}));
    EXPECT_EQ(driver.n_done, driver.n_items);
}

TEST_F(FopDelete, a_link_goes_and_its_target_stays)
{
    dir.dir("other");
    dir.file("other/a", "1");
    dir.dir("src/d");
    dir.link("src/d/l", "../../other");
    dir.link("src/m", "../other");
    driver.remove(dir, {"d", "m"}, FOP_FOLLOW);
    EXPECT_TRUE(dir.all("src").empty());
    EXPECT_EQ(dir.read("other/a"), "1");
    EXPECT_TRUE(driver.alerts.empty()) << "nothing is asked about links";
}

TEST_F(FopDelete, an_unwriteable_file_asks)
{
    dir.file("src/a", "1", 0444);
    driver.answers = {1};
    driver.remove(dir, {"a"});
    EXPECT_EQ(driver.alerts[0].title, "Delete");
    EXPECT_EQ(text(0), "Unwriteable file " + quoted("src/a") + "\n");
    EXPECT_EQ(driver.alerts[0].labels,
              (std::vector<std::string>{"&Skip", "&Delete", "de&Lete all", "&Abort"}));
    EXPECT_EQ(driver.alerts[0].on_return, 1);
    EXPECT_EQ(driver.alerts[0].on_close, 4);
    EXPECT_TRUE(dir.exists("src/a"));
    EXPECT_TRUE(driver.done.empty()) << "no word after Skip";
    driver.answers = {2};
    driver.remove(dir, {"a"});
    EXPECT_FALSE(dir.exists("src/a"));
}

TEST_F(FopDelete, an_unwriteable_directory_asks_too)
{
    dir.dir("src/d", 0555);
    driver.answers = {1};
    driver.remove(dir, {"d"});
    EXPECT_EQ(driver.texts(), "Unwriteable file " + quoted("src/d") + "\n");
    EXPECT_TRUE(dir.exists("src/d"));
}

TEST_F(FopDelete, delete_all_stops_the_questions)
{
    for (const char *name : {"src/a", "src/b", "src/c"})
        dir.file(name, "1", 0444);
    driver.answers = {1, 3};
    driver.remove(dir, {"a", "b", "c"});
    EXPECT_EQ(driver.alerts.size(), 2u);
    EXPECT_TRUE(dir.exists("src/c")) << "the last name came first and was skipped";
    EXPECT_FALSE(dir.exists("src/a") || dir.exists("src/b"));
}

TEST_F(FopDelete, abort_ends_the_job)
{
    dir.file("src/a", "1", 0444);
    dir.file("src/b", "1", 0444);
    driver.remove(dir, {"a", "b"});
    EXPECT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(dir.all("src").size(), 2u);
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopDelete, abort_is_looked_at_before_each_name)
{
    for (const char *name : {"src/a", "src/b", "src/c"})
        dir.file(name, "1");
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    driver.on_update = [&](const FopUpdate &update) {
        running->abort = update.to_name && std::strcmp(update.to_name, "b") == 0;
    };
    driver.remove(dir, {"a", "b", "c"});
    EXPECT_EQ(dir.all("src"), (std::map<std::string, std::string>{{"a", "file 1"}}));
}

TEST_F(FopDelete, every_file_is_asked_about_when_that_is_wanted)
{
    dir.file("src/a", "1");
    dir.file("src/b", "1", 0444);
    driver.answers = {2, 2};
    driver.remove(dir, {"a", "b"}, FOP_DELETE_ASK);
    EXPECT_EQ(driver.texts(),
              "Unwriteable file " + quoted("src/b") + "\nFile " + quoted("src/a") + "\n");
    EXPECT_TRUE(dir.all("src").empty());
}

TEST_F(FopDelete, nothing_is_asked_when_that_is_wanted)
{
    dir.file("src/a", "1", 0400);
    driver.remove(dir, {"a"}, FOP_DELETE_ALL | FOP_DELETE_ASK);
    EXPECT_TRUE(driver.alerts.empty());
    EXPECT_FALSE(dir.exists("src/a"));
}

TEST_F(FopDelete, a_failure_is_asked_about_and_told_all_the_same)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    gFopSys.unlinkat = [](int at, const char *path, int flags) {
        if (std::strcmp(path, "b") == 0) {
            errno = EBUSY;
            return -1;
        }
        return gFopSysReal.unlinkat(at, path, flags);
    };
    driver.answers = {1};
    driver.remove(dir, {"a", "b"});
    EXPECT_EQ(driver.alerts[0].title, "Delete");
    EXPECT_EQ(text(0), "Unable to delete " + quoted("src/b") + "\nDevice or resource busy\n");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Continue", "&Abort"}));
    EXPECT_EQ(driver.alerts[0].on_return, 1);
    EXPECT_EQ(driver.alerts[0].on_close, 2);
    EXPECT_EQ(driver.done, (std::vector<std::string>{dir / "src/b", dir / "src/a"}));
    driver.remove(dir, {"b"});
    EXPECT_EQ(driver.done.size(), 2u) << "no word after Abort";
}

TEST_F(FopDelete, what_vanished_meanwhile_is_asked_about)
{
    dir.file("src/a", "1");
    driver.on_update = [&](const FopUpdate &) { ::unlink((dir / "src/a").c_str()); };
    driver.answers = {1};
    driver.remove(dir, {"a"});
    EXPECT_EQ(driver.alerts.size(), 1u);
    EXPECT_NE(driver.texts().find("No such file or directory"), std::string::npos);
}

TEST_F(FopDelete, sockets_are_left_where_they_are)
{
    dir.file("src/a", "1");
    ASSERT_EQ(::mknod((dir / "src/socket").c_str(), S_IFSOCK | 0644, 0), 0);
    driver.remove(dir, {"a", "socket"});
    EXPECT_EQ(dir.all("src"), (std::map<std::string, std::string>{{"socket", "other"}}));
    EXPECT_TRUE(driver.alerts.empty() && driver.notices.empty());
}

TEST_F(FopDelete, a_directory_swapped_for_a_link_leads_nowhere_else)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.dir("outside");
    dir.file("outside/a", "precious");
    bool swapped = false;
    driver.on_update = [&](const FopUpdate &update) {
        if (!swapped && update.title && std::strcmp(update.title, "Deleting") == 0) {
            swapped = true;
            ::rename((dir / "src/d/e").c_str(), (dir / "moved").c_str());
            dir.link("src/d/e", dir / "outside");
        }
    };
    driver.on_alert = [](const FopAlert &) { return 1; };
    driver.remove(dir, {"d"}, FOP_DELETE_ALL);
    EXPECT_TRUE(swapped);
    EXPECT_EQ(dir.read("outside/a"), "precious");
}

TEST(FopDeep, a_depth_of_3000_directories_is_copied_moved_and_deleted)
{
    JobDir dir("/dev/shm"); // a disk's file system is slow at making what was just deleted
    Driver driver;
    dir.dir("src");
    dir.dir("dst");
    int at = ::open((dir / "src").c_str(), O_PATH | O_DIRECTORY);
    for (int i = 0; i < 3000; i++) {
        ASSERT_EQ(::mkdirat(at, "dd", 0755), 0);
        int next = ::openat(at, "dd", O_PATH | O_DIRECTORY);
        ::close(at);
        at = next;
    }
    ::close(::openat(at, "end", O_CREAT | O_WRONLY, 0644));
    ::close(at);
    driver.copy(dir, {"dd"});
    EXPECT_EQ(driver.n_items, 3001);
    EXPECT_EQ(driver.n_done, 3001);
    sys_two_file_systems();
    driver.run(FOP_MOVE, dir / "dst", {"dd"}, dir / "moved");
    EXPECT_FALSE(dir.exists("dst/dd"));
    driver.run(FOP_DELETE, dir.path, {"moved"}, "");
    driver.remove(dir, {"dd"});
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts().substr(0, 500);
    EXPECT_FALSE(dir.exists("src/dd") || dir.exists("moved"));
}

using FopScan = FopTest;

TEST_F(FopScan, a_directory_that_cannot_be_opened_stays_without_contents)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        if (std::strcmp(path, "d") == 0 && !(flags & O_PATH)) {
            errno = EACCES;
            return -1;
        }
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(driver.alerts[0].title, "Dir Reading");
    EXPECT_EQ(text(0), "Unable to open " + quoted("src/d") + " directory\nPermission denied\n");
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"d", "directory"}}));
    driver.answers = {2};
    driver.remove(dir, {"d"});
    EXPECT_TRUE(dir.exists("src/d"));
}

TEST_F(FopScan, a_directory_that_cannot_be_read_to_its_end_keeps_what_was_read)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    static int sTurn;
    sTurn = 0;
    gFopSys.getdents = [](int fd, void *buffer, size_t size) {
        if (sTurn++ == 1) {
            errno = EIO;
            return ssize_t{-1};
        }
        return gFopSysReal.getdents(fd, buffer, size);
    };
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(text(0), "Unable to read " + quoted("src/d") + " directory\nInput/output error\n");
    EXPECT_EQ(dir.read("dst/d/a"), "1");
    sTurn = 0;
    driver.answers = {2};
    driver.remove(dir, {"d"});
    EXPECT_EQ(dir.read("src/d/a"), "1");
}

TEST_F(FopScan, an_item_that_is_gone_is_asked_about)
{
    dir.file("src/a", "1");
    driver.answers = {1};
    driver.copy(dir, {"gone", "a"});
    EXPECT_EQ(driver.alerts[0].title, "File Scan");
    EXPECT_EQ(text(0), "Unable to stat " + quoted("src/gone") + "\nNo such file or directory\n");
    EXPECT_EQ(dir.read("dst/a"), "1");
    driver.answers = {2};
    driver.copy(dir, {"gone", "a"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.n_done, 0);
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopScan, an_aborted_scan_shows_done)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    driver.on_created = [](FileOp &job) { job.abort = 1; };
    driver.copy(dir, {"d"});
    EXPECT_TRUE(driver.finished_done);
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(FopScan, abort_is_looked_at_before_each_entry)
{
    dir.dir("src/d");
    for (int i = 0; i < 50; i++)
        dir.file("src/d/" + std::to_string(i), "1");
    FileOp *running = nullptr;
    driver.on_created = [&](FileOp &job) { running = &job; };
    driver.on_update = [&](const FopUpdate &) { running->abort = running->n_items == 10; };
    driver.copy(dir, {"d"});
    EXPECT_EQ(driver.n_items, 10);
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(FopScan, counts_names_and_sizes)
{
    dir.dir("src/d");
    dir.file("src/d/a", std::string(1000, 'x'));
    dir.file("src/b", std::string(500, 'x'));
    int64_t directory = dir.status("src/d").st_size;
    driver.copy(dir, {"d", "b"});
    EXPECT_EQ(driver.n_items, 3);
    EXPECT_EQ(driver.total_bytes, 1500 + directory);
}

// Runs body as an ordinary user in a process of its own when we are the superuser; its exit status.
int as_user(const JobDir &dir, const std::function<int()> &body)
{
    if (::geteuid() == 0) {
        std::string command = "chown -R 12345:12345 '" + dir.path + "'";
        [[maybe_unused]] int owned = std::system(command.c_str());
    }
    pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(12345) == -1 || ::setuid(12345) == -1))
            ::_exit(99);
        ::_exit(body());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}

TEST_F(FopScan, an_ordinary_user_is_asked_about_what_is_closed_to_him)
{
    dir.dir("src/closed");
    dir.file("src/closed/a", "1");
    dir.file("src/open", "2");
    dir.file("src/secret", "3", 0000);
    ::chmod((dir / "src/closed").c_str(), 0000);
    int status = as_user(dir, [&] {
        driver.on_alert = [](const FopAlert &) { return 1; };
        driver.copy(dir, {"closed", "open", "secret"});
        bool ok = driver.texts() == "Unable to open " + quoted("src/closed") +
                                        " directory\nPermission denied\nUnable to open " +
                                        quoted("src/secret") + "\nPermission denied\n";
        return ok && dir.read("dst/open") == "2" && !dir.exists("dst/secret") ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(FopScan, an_ordinary_users_read_only_target_is_not_made_writable)
{
    dir.file("src/a", "");
    dir.file("dst/a", "old", 0444);
    int status = as_user(dir, [&] {
        sys_two_file_systems();
        driver.answers = {1};
        driver.move(dir, {"a"}, FOP_OVERWRITE);
        bool ok = driver.texts() == "Error writing " + quoted("dst/a") + "\nPermission denied\n";
        return ok && dir.read("dst/a") == "old" && dir.exists("src/a") ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(FopScan, an_ordinary_user_overwrites_in_place_where_no_sibling_can_be_made)
{
    dir.file("src/a", "new");
    dir.file("dst/a", "old content");
    ino_t inode = dir.status("dst/a").st_ino;
    ::chmod((dir / "dst").c_str(), 0555);
    int status = as_user(dir, [&] {
        driver.copy(dir, {"a"}, FOP_OVERWRITE);
        return driver.alerts.empty() && dir.read("dst/a") == "new" ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(dir.status("dst/a").st_ino, inode);
}

TEST_F(FopScan, an_ordinary_user_moves_nothing_out_of_a_closed_directory)
{
    dir.file("src/a", "1");
    ::chmod((dir / "src").c_str(), 0555);
    int status = as_user(dir, [&] {
        sys_two_file_systems();
        driver.answers = {1};
        driver.move(dir, {"a"});
        bool ok = driver.texts() == "Unable to delete " + quoted("src/a") + "\nPermission denied\n";
        return ok && dir.read("src/a") == "1" && dir.read("dst/a") == "1" ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace tav
