// A disk that is full in the middle of a copy: a small file system of the test's own.
#include "fop_driver.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr size_t MIB = 1 << 20;
constexpr int NO_MOUNT = 77; // the process could not have a file system of its own

void x_write(const char *path, const std::string &text)
{
    int fd = ::open(path, O_WRONLY);
    [[maybe_unused]] ssize_t written = ::write(fd, text.data(), text.size());
    ::close(fd);
}

// Runs body in a process that has a file system of two megabytes at dst; its answer.
int with_small_disk(const JobDir &dir, const std::function<bool()> &body)
{
    std::string uid = std::to_string(::geteuid()), gid = std::to_string(::getegid());
    pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) == -1)
            ::_exit(NO_MOUNT);
        x_write("/proc/self/setgroups", "deny");
        x_write("/proc/self/uid_map", "0 " + uid + " 1");
        x_write("/proc/self/gid_map", "0 " + gid + " 1");
        if (::mount("tav", (dir / "dst").c_str(), "tmpfs", 0, "size=2m") == -1)
            ::_exit(NO_MOUNT);
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

struct FopFull : testing::Test {
    JobDir dir;
    Driver driver;
    std::string content = std::string(MIB + 300'000, 'x');
    FopFull()
    {
        dir.dir("src");
        dir.dir("dst");
        dir.file("src/a", content);
        dir.file("src/b", "small");
    }
    void expect(const std::function<bool()> &body)
    {
        int status = with_small_disk(dir, [&] {
            dir.file("dst/filler", std::string(MIB, 'f'));
            return body();
        });
        if (status == NO_MOUNT)
            GTEST_SKIP() << "no file system of its own for this user";
        EXPECT_EQ(status, 0);
    }
    std::string question()
    {
        return "Unable to write '" + (dir / "dst/a") + "'\nNo space left on device\n";
    }
};

TEST_F(FopFull, retry_goes_on_after_room_was_made)
{
    expect([&] {
        driver.on_alert = [&](const FopAlert &alert) {
            bool asked = alert.text == question() && alert.title == "Write error";
            ::unlink((dir / "dst/filler").c_str());
            return asked ? 1 : 3;
        };
        driver.copy(dir, {"a", "b"});
        return driver.alerts.size() == 1 && dir.all("dst") == dir.all("src");
    });
}

TEST_F(FopFull, retry_without_room_asks_again)
{
    expect([&] {
        driver.answers = {1, 1, 2};
        driver.copy(dir, {"a", "b"});
        return driver.alerts.size() == 3 && dir.read("dst/b") == "small" && !dir.exists("dst/a");
    });
}

TEST_F(FopFull, skip_leaves_nothing_of_the_file)
{
    expect([&] {
        driver.answers = {2};
        driver.copy(dir, {"a", "b"});
        return dir.all("dst").size() == 2 && dir.read("dst/b") == "small";
    });
}

TEST_F(FopFull, abort_leaves_nothing_and_a_move_keeps_its_sources)
{
    expect([&] {
        driver.answers = {3};
        driver.move(dir, {"a", "b"});
        return dir.all("dst").size() == 1 && dir.read("src/a") == content && dir.exists("src/b");
    });
}

TEST_F(FopFull, an_existing_file_survives_skip)
{
    expect([&] {
        dir.file("dst/a", "old");
        driver.answers = {2, 2};
        driver.copy(dir, {"a"});
        return driver.alerts.size() == 2 && dir.read("dst/a") == "old";
    });
}

} // namespace
} // namespace tav
