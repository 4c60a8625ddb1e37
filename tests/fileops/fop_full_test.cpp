// A disk that is full in the middle of a copy: a small file system of the test's own, and, where
// this user can have none, one that the table of system calls makes small.
#include "fop_driver.h"

#include <cerrno>
#include <sys/mount.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr size_t MIB = 1 << 20;

bool sFiller; // something takes half of the disk

// A disk of two megabytes on which only the file that is being written, and the filler, take room.
ssize_t x_small_write(int fd, const void *bytes, size_t size)
{
    struct stat status {};
    ::fstat(fd, &status);
    size_t room = (sFiller ? 1 : 2) * MIB, used = static_cast<size_t>(status.st_size);
    if (used < room)
        return gFopSysReal.write(fd, bytes, std::min(size, room - used));
    errno = ENOSPC;
    return -1;
}

struct FopFull : testing::TestWithParam<bool> { // whether by the table
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
    // Runs body on a disk that is half full.
    void expect(const std::function<bool()> &body)
    {
        auto run = [&] {
            dir.file("dst/filler", std::string(MIB, 'f'));
            sFiller = true;
            return body();
        };
        std::optional<bool> said;
        if (!GetParam())
            said = own_mounts(
                [&] { return ::mount("tav", (dir / "dst").c_str(), "tmpfs", 0, "size=2m") == 0; },
                run);
        if (!said) {
            gFopSys.write = x_small_write;
            gFopSys.copy_range = [](int, int, size_t) -> ssize_t {
                errno = EXDEV;
                return -1;
            };
            said = run();
        }
        EXPECT_TRUE(*said);
    }
    void make_room() const
    {
        ::unlink((dir / "dst/filler").c_str());
        sFiller = false;
    }
    std::string question() const
    {
        return "Unable to write '" + (dir / "dst/a") + "'\nNo space left on device\n";
    }
};

TEST_P(FopFull, retry_goes_on_after_room_was_made)
{
    expect([&] {
        driver.on_alert = [&](const FopAlert &alert) {
            bool asked = alert.text == question() && alert.title == "Write error";
            make_room();
            return asked ? 1 : 3;
        };
        driver.copy(dir, {"a", "b"});
        return driver.alerts.size() == 1 && dir.all("dst") == dir.all("src");
    });
}

TEST_P(FopFull, retry_without_room_asks_again)
{
    expect([&] {
        driver.answers = {1, 1, 2};
        driver.copy(dir, {"a", "b"});
        return driver.alerts.size() == 3 && dir.read("dst/b") == "small" && !dir.exists("dst/a");
    });
}

TEST_P(FopFull, skip_leaves_nothing_of_the_file)
{
    expect([&] {
        driver.answers = {2};
        driver.copy(dir, {"a", "b"});
        return dir.all("dst").size() == 2 && dir.read("dst/b") == "small";
    });
}

TEST_P(FopFull, abort_leaves_nothing_and_a_move_keeps_its_sources)
{
    expect([&] {
        sys_two_file_systems();
        driver.answers = {3};
        driver.move(dir, {"a", "b"});
        return dir.all("dst").size() == 1 && dir.read("src/a") == content && dir.exists("src/b");
    });
}

TEST_P(FopFull, an_existing_file_survives_skip)
{
    expect([&] {
        dir.file("dst/a", "old");
        driver.answers = {2, 2};
        driver.copy(dir, {"a"});
        return driver.alerts.size() == 2 && dir.read("dst/a") == "old";
    });
}

TEST_P(FopFull, a_file_written_in_place_asks_too)
{
    expect([&] {
        dir.file("real", "old");
        dir.link("dst/b", "../real");
        dir.file("dst/a", "old");
        ::link((dir / "dst/a").c_str(), (dir / "dst/other").c_str());
        driver.on_alert = [&](const FopAlert &alert) {
            make_room();
            return alert.text == question() ? 1 : 3;
        };
        driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
        return driver.alerts.size() == 1 && dir.read("dst/other") == content &&
               dir.read("real") == "small";
    });
}

INSTANTIATE_TEST_SUITE_P(Disks, FopFull, testing::Values(false, true),
                         [](const auto &by) { return by.param ? "by_the_table" : "small"; });

} // namespace
} // namespace tav
