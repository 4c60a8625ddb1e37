// Copying what is no regular file: links, FIFOs, directories, and what is left out.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace tav {
namespace {

using FopSpecial = FopTest;

TEST_F(FopSpecial, sockets_and_devices_are_left_out_without_a_word)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    ::mknod((dir / "src/d/socket").c_str(), S_IFSOCK | 0644, 0);
    ::mknod((dir / "src/d/null").c_str(), S_IFCHR | 0644, makedev(1, 3));
    driver.copy(dir, {"d"});
    EXPECT_EQ(dir.all("dst"),
              (std::map<std::string, std::string>{{"d", "directory"}, {"d/a", "file 1"}}));
    EXPECT_TRUE(driver.alerts.empty() && driver.notices.empty());
}

TEST_F(FopSpecial, a_fifo_is_never_opened)
{
    dir.fifo("src/f", 0640);
    static bool sOpened;
    sOpened = false;
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        sOpened |= std::strcmp(path, "f") == 0;
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.copy(dir, {"f"});
    EXPECT_FALSE(sOpened);
    EXPECT_TRUE(S_ISFIFO(dir.status("dst/f").st_mode));
    EXPECT_EQ(dir.status("dst/f").st_mode & 07777, 0640u);
}

TEST_F(FopSpecial, a_fifo_replaces_a_fifo_and_nothing_else)
{
    dir.fifo("src/f", 0600);
    dir.fifo("dst/f", 0644);
    driver.copy(dir, {"f"});
    EXPECT_EQ(dir.status("dst/f").st_mode & 07777, 0600u);
    dir.fifo("src/g");
    dir.file("dst/g", "content");
    driver.answers = {1};
    driver.copy(dir, {"g"});
    EXPECT_EQ(text(0), "The " + quoted("dst/g") + " is not a FIFO\n");
    EXPECT_EQ(dir.read("dst/g"), "content");
    EXPECT_EQ(driver.alerts[0].title, "Copy/Move");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Continue", "&Abort"}));
}

TEST_F(FopSpecial, a_fifo_does_not_replace_a_file_that_has_only_just_come)
{
    dir.fifo("src/f");
    static std::string sCome;
    sCome = dir / "dst/f";
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        int result = gFopSysReal.fstatat(at, path, status, flags);
        if (flags == 0 && std::strcmp(path, "f") == 0) {
            int error = errno;
            ::close(::open(sCome.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
            errno = error;
        }
        return result;
    };
    driver.answers = {1};
    driver.copy(dir, {"f"});
    EXPECT_EQ(text(0), "The " + quoted("dst/f") + " is not a FIFO\n");
    EXPECT_EQ(dir.all("dst")["f"], "file ");
}

TEST_F(FopSpecial, a_link_never_replaces_what_it_points_to)
{
    dir.file("dst/l", "only copy");
    dir.link("src/l", "../dst/l");
    driver.copy(dir, {"l"}, FOP_LINKS | FOP_OVERWRITE);
    EXPECT_EQ(driver.notices,
              std::vector<std::string>{"File Scan: Can't copy file(s) into itself."});
    EXPECT_EQ(dir.all("dst")["l"], "file only copy");
}

TEST_F(FopSpecial, links_are_asked_about_once)
{
    dir.file("src/target", "t");
    dir.link("src/a", "target");
    dir.link("src/b", "target");
    driver.answers = {2};
    driver.copy(dir, {"a", "b"});
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(driver.alerts[0].title, "Copy");
    EXPECT_EQ(text(0), "Symbolic links detected in the file list\nWhat do you want to copy ?");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Files", "&Links", "&Abort"}));
    EXPECT_EQ(driver.alerts[0].on_return, 2);
    EXPECT_EQ(driver.alerts[0].on_close, 3);
    EXPECT_EQ(dir.all("dst")["a"], "link target");
    EXPECT_EQ(dir.all("dst")["b"], "link target");
}

TEST_F(FopSpecial, links_answered_with_files_copy_what_they_point_to)
{
    dir.file("src/target", "t");
    dir.link("src/a", "target");
    driver.answers = {1};
    driver.copy(dir, {"a", "target"});
    EXPECT_EQ(dir.all("dst")["a"], "file t");
}

TEST_F(FopSpecial, links_answered_with_abort_end_the_job_with_done)
{
    dir.link("src/a", "target");
    dir.file("src/b", "b");
    driver.answers = {3};
    driver.copy(dir, {"a", "b"});
    EXPECT_TRUE(dir.all("dst").empty());
    EXPECT_TRUE(driver.finished_done);
}

TEST_F(FopSpecial, circles_of_links_end)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.link("src/d/e/up", "..");
    dir.link("src/d/self", ".");
    driver.copy(dir, {"d"}, FOP_FOLLOW);
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{
                                  {"d", "directory"}, {"d/e", "directory"}, {"d/e/a", "file 1"}}));
}

TEST_F(FopSpecial, a_followed_link_to_a_directory_is_descended_into)
{
    dir.dir("other");
    dir.file("other/a", "1");
    dir.link("src/l", "../other");
    driver.copy(dir, {"l"}, FOP_FOLLOW);
    EXPECT_EQ(dir.read("dst/l/a"), "1");
    EXPECT_TRUE(S_ISDIR(dir.status("dst/l").st_mode));
}

TEST_F(FopSpecial, a_broken_link_that_is_to_be_followed_is_asked_about)
{
    dir.link("src/l", "nowhere");
    dir.file("src/a", "1");
    driver.answers = {1};
    driver.copy(dir, {"l", "a"}, FOP_FOLLOW);
    EXPECT_EQ(text(0), "Unable to stat " + quoted("src/l") + "\nNo such file or directory\n");
    EXPECT_EQ(driver.alerts[0].title, "File Scan");
    EXPECT_EQ(dir.read("dst/a"), "1");
    EXPECT_EQ(driver.n_done, 2) << "dead names count too";
}

TEST_F(FopSpecial, a_link_asks_before_it_replaces_a_file)
{
    dir.link("src/l", "somewhere");
    dir.file("dst/l", "mine");
    driver.answers = {1};
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(text(0), "The " + quoted("dst/l") + " file exists.\nWhat do you want to do ?\n");
    EXPECT_EQ(dir.read("dst/l"), "mine");
    driver.answers = {2};
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(dir.all("dst")["l"], "link somewhere");
}

TEST_F(FopSpecial, a_link_onto_a_directory_cannot_be_made)
{
    dir.link("src/l", "somewhere");
    dir.dir("dst/l");
    driver.answers = {1};
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(text(0), "Unable to create symbolic link " + quoted("dst/l") + " to\n'somewhere'\n");
}

TEST_F(FopSpecial, the_times_of_a_link_are_its_own)
{
    dir.file("dst/target", "t");
    dir.link("src/l", dir / "dst/target");
    timespec times[2] = {{1000, 11}, {2000, 22}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (dir / "src/l").c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    struct stat before = dir.status("dst/target");
    driver.copy(dir, {"l"}, FOP_LINKS);
    struct stat link = dir.status("dst/l");
    EXPECT_EQ(link.st_mtim.tv_sec, 2000);
    EXPECT_EQ(link.st_mtim.tv_nsec, 22);
    EXPECT_EQ(dir.status("dst/target").st_mtim.tv_nsec, before.st_mtim.tv_nsec);
}

TEST_F(FopSpecial, the_owner_of_a_link_is_its_own)
{
    dir.file("dst/target", "t");
    dir.link("src/l", dir / "dst/target");
    static ino_t sLink;
    sLink = dir.status("src/l").st_ino;
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        int result = gFopSysReal.fstatat(at, path, status, flags);
        if (result == 0 && status->st_ino == sLink)
            status->st_uid = 4242;
        return result;
    };
    static std::string sGiven;
    sGiven.clear();
    gFopSys.fchownat = [](int, const char *path, uid_t uid, gid_t, int flags) {
        sGiven += path + (" " + std::to_string(uid)) + " " + std::to_string(flags) + "\n";
        return 0;
    };
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(sGiven, "l 4242 " + std::to_string(AT_SYMLINK_NOFOLLOW) + "\n");
}

TEST_F(FopSpecial, a_link_or_fifo_is_never_copied_into_itself)
{
    dir.link("src/l", "nowhere");
    dir.fifo("src/f");
    for (const char *name : {"l", "f"}) {
        std::string from = dir / ("src/" + std::string(name)),
                    to = dir / ("dst/" + std::string(name));
        ASSERT_EQ(::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0), 0);
        driver.notices.clear();
        driver.copy(dir, {name}, FOP_LINKS | FOP_OVERWRITE);
        EXPECT_EQ(driver.notices,
                  std::vector<std::string>{"File Scan: Can't copy file(s) into itself."});
    }
    EXPECT_EQ(dir.all("src"), dir.all("dst"));
}

TEST_F(FopSpecial, a_link_that_cannot_be_read_is_asked_about)
{
    dir.link("src/l", "somewhere");
    gFopSys.readlinkat = [](int, const char *, char *, size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    driver.answers = {1};
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(text(0), "Unable to read link " + quoted("src/l") + "\n");
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(FopSpecial, a_directory_that_cannot_be_made_is_asked_about)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    gFopSys.mkdirat = [](int, const char *, mode_t) {
        errno = ENOSPC;
        return -1;
    };
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(driver.texts(), "Unable to make " + quoted("dst/d") + " directory\n");
    EXPECT_TRUE(dir.all("dst").empty());
    EXPECT_EQ(driver.n_done, driver.n_items) << "what is in it is skipped with it";
}

TEST_F(FopSpecial, the_directory_that_was_copied_into_stays_as_it_is)
{
    dir.file("src/a", "1");
    ::chmod((dir / "src").c_str(), 0700);
    timespec times[2] = {{1000, 0}, {2000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (dir / "src").c_str(), times, 0), 0);
    driver.copy(dir, {"a"});
    EXPECT_EQ(dir.status("dst").st_mode & 07777, 0755u);
    EXPECT_NE(dir.status("dst").st_mtim.tv_sec, 2000);
}

TEST_F(FopSpecial, a_long_link_is_copied_whole)
{
    std::string target(4000, 'x');
    dir.link("src/l", target);
    driver.copy(dir, {"l"}, FOP_LINKS);
    EXPECT_EQ(dir.all("dst")["l"], "link " + target);
}

TEST_F(FopSpecial, a_directory_that_cannot_be_finished_is_asked_about)
{
    dir.dir("src/d", 0750);
    static int sCount;
    sCount = 0;
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        bool dest = flags == (O_PATH | O_DIRECTORY) && std::strcmp(path, "d") == 0;
        if (dest && ++sCount == 2) {
            errno = EMFILE;
            return -1;
        }
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(text(0), "Error writing " + quoted("dst/d") + "\nToo many open files\n");
    EXPECT_EQ(dir.status("dst/d").st_mode & 07777, 0750u);
}

TEST_F(FopSpecial, a_file_in_the_way_of_a_directory_is_asked_about)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    dir.file("dst/d", "mine");
    driver.answers = {1};
    driver.copy(dir, {"d"});
    ASSERT_EQ(driver.alerts.size(), 1u) << "what is in it is skipped with it";
    EXPECT_EQ(text(0), "The " + quoted("dst/d") + " is not a directory\n");
    EXPECT_EQ(dir.read("dst/d"), "mine");
    EXPECT_EQ(driver.n_done, driver.n_items);
}

TEST_F(FopSpecial, an_existing_directory_is_writable_meanwhile_and_gets_the_sources_mode)
{
    dir.dir("src/d", 0750);
    dir.file("src/d/a", "1");
    dir.dir("dst/d", 0500);
    mode_t meanwhile = 0;
    gFopSys.linkfd = [](int fd, int at, const char *name) {
        return gFopSysReal.linkfd(fd, at, name);
    };
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name && std::strstr(update.from_name, "/d/a"))
            meanwhile = dir.status("dst/d").st_mode & 07777;
    };
    driver.copy(dir, {"d"});
    EXPECT_EQ(meanwhile, 0777u);
    EXPECT_EQ(dir.status("dst/d").st_mode & 07777, 0750u);
}

TEST_F(FopSpecial, an_existing_directory_gets_its_mode_also_when_the_job_is_aborted)
{
    dir.dir("src/d", 0750);
    dir.file("src/d/a", "1");
    dir.dir("dst/d", 0755);
    dir.file("dst/d/a", "old");
    driver.answers = {4};
    driver.copy(dir, {"d"});
    EXPECT_EQ(dir.status("dst/d").st_mode & 07777, 0750u);
}

TEST_F(FopSpecial, a_directory_swapped_for_a_link_leads_nowhere_else)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.dir("outside");
    dir.file("outside/a", "secret");
    driver.on_update = [&](const FopUpdate &update) {
        if (update.title && std::strcmp(update.title, "Copying") == 0) {
            ::rename((dir / "src/d/e").c_str(), (dir / "src/d/moved").c_str());
            dir.link("src/d/e", dir / "outside");
        }
    };
    driver.on_alert = [](const FopAlert &) { return 1; };
    driver.copy(dir, {"d"}, FOP_LINKS);
    for (auto &[name, what] : dir.all("dst"))
        EXPECT_EQ(what.find("secret"), std::string::npos) << name;
}

TEST_F(FopSpecial, a_destination_swapped_for_a_link_leads_nowhere_else)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.dir("outside");
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name && std::strstr(update.from_name, "/e/a") && dir.exists("dst/d/e")) {
            ::rename((dir / "dst/d/e").c_str(), (dir / "dst/d/moved").c_str());
            dir.link("dst/d/e", dir / "outside");
        }
    };
    driver.on_alert = [](const FopAlert &) { return 1; };
    driver.copy(dir, {"d"});
    EXPECT_TRUE(dir.all("outside").empty());
}

TEST_F(FopSpecial, no_link_below_the_destination_is_followed_to_a_directory)
{
    dir.dir("src/d/e");
    dir.file("src/d/e/a", "1");
    dir.dir("outside");
    dir.dir("dst/d");
    dir.link("dst/d/e", dir / "outside");
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(text(0), "The " + quoted("dst/d/e") + " is not a directory\n");
    EXPECT_TRUE(dir.all("outside").empty());
}

TEST_F(FopSpecial, a_link_that_leads_nowhere_is_replaced_by_a_fifo)
{
    dir.fifo("src/f");
    dir.link("dst/f", "nowhere");
    driver.copy(dir, {"f"});
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
    EXPECT_TRUE(S_ISFIFO(dir.status("dst/f").st_mode));
}

TEST_F(FopSpecial, what_cannot_be_replaced_stays)
{
    dir.fifo("src/f", 0600);
    dir.fifo("dst/f", 0644);
    dir.link("src/l", "new");
    dir.link("dst/l", "old");
    auto before = dir.all("dst");
    gFopSys.mkfifoat = [](int, const char *, mode_t) {
        errno = ENOSPC;
        return -1;
    };
    gFopSys.symlinkat = [](const char *, int, const char *) {
        errno = ENOSPC;
        return -1;
    };
    driver.answers = {1, 1};
    driver.copy(dir, {"f", "l"}, FOP_LINKS);
    EXPECT_EQ(driver.texts(), "Unable to make " + quoted("dst/f") + " FIFO\n" +
                                  "Unable to create symbolic link " + quoted("dst/l") +
                                  " to\n'new'\n");
    EXPECT_EQ(dir.all("dst"), before);
    EXPECT_EQ(dir.status("dst/f").st_mode & 07777, 0644u);
}

TEST_F(FopSpecial, a_directory_that_could_not_be_read_gets_its_mode_all_the_same)
{
    dir.dir("src/d", 0750);
    dir.dir("dst/d", 0700);
    gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
        if (std::strcmp(path, "d") == 0 && !(flags & O_PATH)) {
            errno = EACCES;
            return -1;
        }
        return gFopSysReal.openat(at, path, flags, mode);
    };
    driver.answers = {1};
    driver.copy(dir, {"d"});
    EXPECT_EQ(dir.status("dst/d").st_mode & 07777, 0750u);
}

} // namespace
} // namespace tav
