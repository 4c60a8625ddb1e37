// The checks of a destination before anything is touched.
#include "fop_driver.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {
namespace {

struct FopCheck : FopTest {
    FopCheck()
    {
        dir.dir("src/d");
        dir.file("src/a", "one");
        dir.file("src/b", "two");
        dir.file("src/d/c", "three");
    }
    std::string notice() const { return driver.notices.empty() ? "" : driver.notices[0]; }
};

TEST_F(FopCheck, one_file_goes_into_an_existing_directory)
{
    driver.copy(dir, {"a"});
    EXPECT_EQ(dir.read("dst/a"), "one");
}

TEST_F(FopCheck, one_file_takes_a_new_name)
{
    driver.run(FOP_COPY, dir / "src", {"a"}, dir / "new");
    EXPECT_EQ(dir.read("new"), "one");
    EXPECT_TRUE(driver.alerts.empty());
}

TEST_F(FopCheck, one_file_onto_a_file_writes_to_that_file)
{
    dir.file("old", "before");
    driver.answers = {2};
    driver.run(FOP_COPY, dir / "src", {"a"}, dir / "old");
    EXPECT_EQ(dir.read("old"), "one");
}

TEST_F(FopCheck, one_file_onto_another_type_is_refused)
{
    dir.fifo("old");
    driver.run(FOP_COPY, dir / "src", {"a"}, dir / "old");
    EXPECT_EQ(notice(), "File Scan: Source and destination file types mismatch.");
    EXPECT_FALSE(driver.finished_done) << "a failed check shows no \"Done\"";
    EXPECT_EQ(driver.removed, 1);
    driver.run(FOP_COPY, dir / "src", {"d"}, dir / "src/a");
    EXPECT_EQ(driver.notices.size(), 2u);
    EXPECT_EQ(dir.read("src/a"), "one");
}

TEST_F(FopCheck, one_directory_takes_a_new_name)
{
    driver.run(FOP_COPY, dir / "src", {"d"}, dir / "new");
    EXPECT_EQ(dir.read("new/c"), "three");
    EXPECT_EQ(dir.status("new").st_mode & 07777, 0755u);
}

TEST_F(FopCheck, one_directory_whose_new_name_cannot_be_made_ends_the_job)
{
    driver.run(FOP_COPY, dir / "src", {"d"}, dir / "no/such/new");
    EXPECT_EQ(notice(),
              "Make Directory: Unable to create '" + (dir / "no/such/new") + "' directory\n");
}

TEST_F(FopCheck, one_item_that_is_not_there_ends_the_job)
{
    driver.copy(dir, {"gone"});
    EXPECT_EQ(notice(), "File Scan: Unable to get stats for '" + (dir / "src/gone") + "'");
    EXPECT_FALSE(driver.finished_done);
}

TEST_F(FopCheck, one_item_whose_path_is_too_long_is_copied_all_the_same)
{
    std::string deep = dir / "src";
    while (deep.size() < 3900) {
        deep += "/" + std::string(100, 'd');
        ASSERT_EQ(::mkdir(deep.c_str(), 0755), 0);
    }
    const std::string name(200, 'n');
    int at = ::open(deep.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    int fd = ::openat(at, name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    ASSERT_NE(fd, -1);
    ::close(fd);
    ::close(at);
    driver.run(FOP_COPY, deep, {name}, dir / "dst");
    EXPECT_TRUE(driver.notices.empty());
    EXPECT_TRUE(dir.exists("dst/" + name));
}

TEST_F(FopCheck, only_what_shows_done_waits_for_it_to_be_seen)
{
    static unsigned sWaited;
    gFopSys.delay = [](unsigned milliseconds) { sWaited += milliseconds; };
    sWaited = 0;
    driver.copy(dir, {"gone"});
    EXPECT_EQ(sWaited, 0u);
    driver.copy(dir, {"a"});
    EXPECT_EQ(sWaited, FOP_DONE_MS);
    driver.on_created = [](FileOp &job) { job.abort = 1; };
    driver.copy(dir, {"a"});
    EXPECT_EQ(sWaited, 2 * FOP_DONE_MS) << "an aborted scan shows it, too";
}

TEST_F(FopCheck, several_items_ask_for_a_missing_directory)
{
    driver.answers = {1};
    driver.run(FOP_COPY, dir / "src", {"a", "b"}, dir / "new");
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(driver.alerts[0].title, "Make Directory");
    EXPECT_EQ(driver.alerts[0].text, "The '" + (dir / "new") +
                                         "' directory doesn't exist\nDo you want to create this "
                                         "directory ?");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Yes", "&Abort"}));
    EXPECT_EQ(dir.read("new/b"), "two");
}

TEST_F(FopCheck, several_items_and_no_end_the_job)
{
    driver.answers = {2};
    driver.run(FOP_COPY, dir / "src", {"a", "b"}, dir / "new");
    EXPECT_FALSE(dir.exists("new"));
    EXPECT_FALSE(driver.finished_done);
}

TEST_F(FopCheck, several_items_and_a_directory_that_cannot_be_made)
{
    driver.answers = {1};
    driver.run(FOP_COPY, dir / "src", {"a", "b"}, dir / "no/new");
    EXPECT_EQ(notice(), "Make Directory: Unable to create '" + (dir / "no/new") + "' directory\n");
}

TEST_F(FopCheck, several_items_into_a_file_are_refused)
{
    dir.file("old", "before");
    driver.run(FOP_COPY, dir / "src", {"a", "b"}, dir / "old");
    EXPECT_EQ(notice(),
              "File Scan: Can't copy/move multiple files into \n'" + (dir / "old") + "'\n");
    EXPECT_EQ(dir.read("old"), "before");
}

TEST_F(FopCheck, a_directory_is_never_copied_into_itself_or_below)
{
    dir.dir("src/d/below");
    auto before = dir.all();
    for (const char *dest : {"src/d", "src/d/below", "src/d/new", "src"}) {
        driver.run(FOP_COPY, dir / "src", {"d"}, dir / dest);
        EXPECT_EQ(driver.notices.back(), "File Scan: Can't copy file(s) into itself.") << dest;
        EXPECT_EQ(dir.all(), before) << dest;
    }
    EXPECT_TRUE(driver.alerts.empty());
}

TEST_F(FopCheck, a_directory_is_never_moved_into_itself_or_below)
{
    dir.dir("src/d/below");
    auto before = dir.all();
    for (const char *dest : {"src/d", "src/d/below"}) {
        driver.run(FOP_MOVE, dir / "src", {"a", "d"}, dir / dest);
        EXPECT_EQ(driver.notices.back(), "File Scan: Can't move file(s) into itself.") << dest;
        EXPECT_EQ(dir.all(), before)
            << dest << ": nothing is touched, not even what could be moved";
    }
}

TEST_F(FopCheck, a_directory_is_recognised_behind_a_link)
{
    dir.link("other", "src/d");
    auto before = dir.all();
    driver.run(FOP_COPY, dir / "src", {"d"}, dir / "other");
    EXPECT_EQ(notice(), "File Scan: Can't copy file(s) into itself.");
    EXPECT_EQ(dir.all(), before);
}

TEST_F(FopCheck, several_items_into_a_new_directory_below_one_of_them_make_nothing)
{
    auto before = dir.all();
    for (int op : {FOP_COPY, FOP_MOVE}) {
        driver.notices.clear();
        driver.run(op, dir / "src", {"a", "d"}, dir / "src/d/new");
        EXPECT_EQ(notice(), op == FOP_MOVE ? "File Scan: Can't move file(s) into itself."
                                           : "File Scan: Can't copy file(s) into itself.");
        EXPECT_EQ(dir.all(), before);
    }
    dir.link("src/to_d", "d");
    before = dir.all();
    driver.run(FOP_COPY, dir / "src", {"a", "to_d"}, dir / "src/d/new", FOP_FOLLOW);
    EXPECT_EQ(dir.all(), before) << "a link that is followed is its directory";
    EXPECT_TRUE(driver.alerts.empty()) << "nor is anything asked";
}

// What stands for a mount where there can be none: "mnt" is known as what it would show.
const JobDir *sMounted;
void x_as_mounted(struct stat *status)
{
    if (status->st_ino != sMounted->status("mnt").st_ino)
        return;
    struct stat shown = sMounted->status("src/d");
    status->st_dev = shown.st_dev;
    status->st_ino = shown.st_ino;
}

// "mnt" shows what is in "src/d".
bool with_bound(const JobDir &dir, const std::function<bool()> &body)
{
    dir.dir("mnt");
    auto bind = [&] {
        return ::mount((dir / "src/d").c_str(), (dir / "mnt").c_str(), nullptr, MS_BIND, nullptr) ==
               0;
    };
    if (std::optional<bool> said = own_mounts(bind, body))
        return *said;
    sMounted = &dir;
    gFopSys.fstat = [](int fd, struct stat *status) {
        int result = gFopSysReal.fstat(fd, status);
        x_as_mounted(status);
        return result;
    };
    return body();
}

TEST_F(FopCheck, a_directory_is_recognised_behind_a_mount)
{
    auto before = dir.all("src");
    for (int op : {FOP_COPY, FOP_MOVE}) {
        EXPECT_TRUE(with_bound(dir, [&] {
            driver.notices.clear();
            driver.run(op, dir / "src", {"a", "d"}, dir / "mnt");
            return notice() == (op == FOP_MOVE ? "File Scan: Can't move file(s) into itself."
                                               : "File Scan: Can't copy file(s) into itself.") &&
                   dir.all("src") == before;
        }));
        EXPECT_EQ(dir.all("src"), before);
    }
}

TEST_F(FopCheck, a_file_is_recognised_behind_a_mount)
{
    dir.dir("mnt");
    auto bind = [&] {
        return ::mount((dir / "src").c_str(), (dir / "mnt").c_str(), nullptr, MS_BIND, nullptr) ==
               0;
    };
    auto body = [&] {
        driver.run(FOP_COPY, dir / "src", {"a"}, dir / "mnt", FOP_OVERWRITE);
        driver.run(FOP_MOVE, dir / "src", {"b"}, dir / "mnt", FOP_OVERWRITE);
        return driver.notices.size() == 2 && dir.read("src/a") + dir.read("src/b") == "onetwo";
    };
    std::optional<bool> said = own_mounts(bind, body);
    if (!said) { // a hard link is the same file by another path, too
        ASSERT_EQ(::link((dir / "src/a").c_str(), (dir / "mnt/a").c_str()), 0);
        ASSERT_EQ(::link((dir / "src/b").c_str(), (dir / "mnt/b").c_str()), 0);
        said = body();
    }
    EXPECT_TRUE(*said);
}

} // namespace
} // namespace tav
