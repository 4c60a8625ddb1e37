// The content on its way: how much at a time, and through which buffer.
#include "fop_driver.h"

#include <algorithm>
#include <fcntl.h>

namespace tav {
namespace {

constexpr size_t MIB = 1 << 20;

struct FopData : FopTest {
    static inline std::vector<size_t> sChunks; // what was asked for at a time
    static inline size_t sLeft;                // bytes that the pretended file still has
    static inline bool sSlow;                  // the disk takes long for each
    static inline long sMilliseconds;          // of the clock that the job sees
    static inline FileOp *sJob;
    FopData()
    {
        sChunks.clear();
        sSlow = false;
        driver.on_created = [](FileOp &job) { sJob = &job; };
    }
    // A file of that size, whose copying inside the kernel is only pretended.
    void pretend(size_t size) const
    {
        int fd = ::open((dir / "src/a").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        ASSERT_EQ(::posix_fallocate(fd, 0, static_cast<off_t>(size)), 0);
        ::close(fd);
        sLeft = size;
        gFopSys.clone = [](int, int) {
            errno = EOPNOTSUPP;
            return -1;
        };
        gFopSys.copy_range = [](int, int, size_t chunk) -> ssize_t {
            sMilliseconds += sSlow ? 30 : 1;
            size_t n = std::min(chunk, sLeft);
            sChunks.push_back(chunk);
            sLeft -= n;
            return static_cast<ssize_t>(n);
        };
        gFopSys.read = [](int, void *, size_t) -> ssize_t { return 0; };
        gFopSys.now = [](clockid_t, timespec *time) {
            *time = {1 + sMilliseconds / 1000, sMilliseconds % 1000 * 1'000'000};
        };
    }
};

TEST_F(FopData, a_fast_disk_gets_larger_chunks_of_at_most_8_mib)
{
    pretend(100 * MIB);
    driver.copy(dir, {"a"});
    EXPECT_EQ(sLeft, 0u);
    EXPECT_EQ(sChunks.front(), 64u << 10) << "what the disk can do is not known yet";
    EXPECT_EQ(*std::max_element(sChunks.begin(), sChunks.end()), 8 * MIB);
}

TEST_F(FopData, a_slow_disk_gets_smaller_chunks)
{
    pretend(60 * MIB);
    driver.on_update = [](const FopUpdate &update) { sSlow = update.percent >= 50; };
    driver.copy(dir, {"a"});
    EXPECT_EQ(*std::max_element(sChunks.begin(), sChunks.end()), 8 * MIB);
    EXPECT_LE(sChunks.back(), 1 * MIB);
}

TEST_F(FopData, a_slow_disk_never_gets_more_at_a_time)
{
    pretend(MIB);
    sSlow = true;
    driver.copy(dir, {"a"});
    EXPECT_EQ(sChunks, std::vector<size_t>(17, 64u << 10)) << "and the one that finds the end";
}

TEST_F(FopData, the_next_file_begins_as_the_last_ended)
{
    pretend(40 * MIB);
    dir.file("src/b", std::string(100'000, 'x'));
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(sChunks.back(), 8 * MIB);
}

TEST_F(FopData, abort_and_pause_are_looked_at_before_each_chunk)
{
    pretend(60 * MIB);
    static size_t sAtPause;
    sAtPause = 0;
    driver.on_update = [](const FopUpdate &update) {
        if (!update.from_name && update.percent > 10 && sAtPause == 0)
            sJob->pause = 1;
    };
    gFopSys.delay = [](unsigned milliseconds) {
        if (milliseconds != FOP_PAUSE_MS)
            return;
        if (sAtPause == 0)
            sAtPause = sChunks.size();
        else
            sJob->abort = 1;
    };
    driver.copy(dir, {"a"});
    EXPECT_GT(sAtPause, 0u);
    EXPECT_EQ(sChunks.size(), sAtPause) << "nothing more after the pause and its abort";
    EXPECT_TRUE(dir.all("dst").empty());
}

TEST_F(FopData, abort_is_looked_at_before_each_read_and_write)
{
    dir.file("src/a", std::string(10 * 32768, 'x'));
    gFopSys.copy_range = [](int, int, size_t) -> ssize_t {
        errno = EXDEV;
        return -1;
    };
    static bool sInRead;
    for (bool in_read : {true, false}) {
        sInRead = in_read;
        gFopSys.read = [](int fd, void *bytes, size_t size) {
            sJob->abort = sInRead;
            sChunks.push_back(size);
            return gFopSysReal.read(fd, bytes, size);
        };
        gFopSys.write = [](int fd, const void *bytes, size_t size) {
            EXPECT_FALSE(sInRead) << "written after the abort";
            sJob->abort = 1;
            return gFopSysReal.write(fd, bytes, size);
        };
        sChunks.clear();
        driver.copy(dir, {"a"});
        EXPECT_EQ(sChunks.size(), 1u);
        EXPECT_TRUE(dir.all("dst").empty());
    }
}

TEST_F(FopData, until_it_is_complete_there_is_the_old_file_or_none)
{
    for (const char *name : {"src/a", "src/b"})
        dir.file(name, std::string(3 * MIB, 'x'));
    dir.file("dst/a", "old");
    int looked = 0;
    driver.on_update = [&](const FopUpdate &update) {
        if (update.from_name || update.percent <= 0 || update.percent == 100)
            return;
        looked++;
        bool second = update.percent > 50;
        EXPECT_EQ(dir.status("dst/a").st_size, second ? 3 << 20 : 3) << "a";
        EXPECT_EQ(dir.all("dst").size(), 1u) << "b";
    };
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_GT(looked, 1);
    EXPECT_TRUE(dir.all("dst") == dir.all("src"));
}

TEST_F(FopData, small_files_go_through_the_buffer_of_the_job)
{
    for (const char *name : {"src/a", "src/b"})
        dir.file(name, std::string(30'000, 'x'));
    static const void *sBuffer;
    sBuffer = nullptr;
    gFopSys.read = [](int fd, void *bytes, size_t size) {
        EXPECT_TRUE(!sBuffer || sBuffer == bytes) << "one for all files";
        sBuffer = bytes;
        sChunks.push_back(size);
        return gFopSysReal.read(fd, bytes, size);
    };
    driver.copy(dir, {"a", "b"});
    EXPECT_EQ(sChunks, std::vector<size_t>(4, 32768));
    sChunks.clear();
    sBuffer = nullptr;
    driver.copy(dir, {"a"}, FOP_OVERWRITE | 0x0020);
    EXPECT_EQ(sChunks.back(), 8192u) << "the size that the flags say";
}

} // namespace
} // namespace tav
