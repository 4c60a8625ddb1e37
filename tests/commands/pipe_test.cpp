// Streams to and from shell commands.
#include "commands/pipe.h"

#include "platform/child.h"
#include "testdir.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

std::string x_read(FILE *stream)
{
    std::string text;
    char bytes[256];
    while (const size_t count = fread(bytes, 1, sizeof bytes, stream))
        text.append(bytes, count);
    return text;
}

int x_exit_code(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

TEST(Pipe, ReadsWhatACommandWrites)
{
    FILE *stream = tav::popen("echo hello; exit 3", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(x_read(stream), "hello\n");
    EXPECT_EQ(x_exit_code(tav::pclose(stream)), 3);
}

TEST(Pipe, WritesWhatACommandReads)
{
    tav::TestDir dir;
    FILE *stream = tav::popen(("cat >" + dir.at("out")).c_str(), "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_GE(fputs("some text", stream), 0);
    EXPECT_EQ(x_exit_code(tav::pclose(stream)), 0);
    EXPECT_EQ(dir.read("out"), "some text");
}

TEST(Pipe, AnyOtherModeIsInvalid)
{
    for (const char *mode : {"", "x", "a", "+r"}) {
        errno = 0;
        EXPECT_EQ(tav::popen("true", mode), nullptr);
        EXPECT_EQ(errno, EINVAL);
    }
}

// The descriptor that would be used next.
int x_next_descriptor()
{
    const int descriptor = dup(0);
    close(descriptor);
    return descriptor;
}

TEST(Pipe, WithoutDescriptorsThereIsNoStreamAndTheReasonIsTold)
{
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const int next = x_next_descriptor();
    for (const int left : {0, 1}) {
        const rlimit few = {static_cast<rlim_t>(next + left), limit.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
        errno = 0;
        EXPECT_EQ(tav::popen("true", "r"), nullptr);
        EXPECT_EQ(errno, EMFILE);
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(x_next_descriptor(), next);
    FILE *stream = tav::popen("exit 5", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(x_exit_code(tav::pclose(stream)), 5);
}

TEST(Pipe, ACommandThatIsTooLongLeavesNothingBehind)
{
    const int next = x_next_descriptor();
    for (const char *mode : {"r", "w"}) {
        errno = 0;
        EXPECT_EQ(tav::popen(std::string(size_t{4} << 20, 'a').c_str(), mode), nullptr);
        EXPECT_EQ(errno, E2BIG);
        EXPECT_EQ(x_next_descriptor(), next);
    }
}

TEST(Pipe, OnlyItsOwnStreamsAreClosed)
{
    FILE *other = std::tmpfile();
    errno = 0;
    EXPECT_EQ(tav::pclose(other), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(std::fclose(other), 0);
}

TEST(Pipe, AStreamIsClosedOnce)
{
    FILE *stream = tav::popen("true", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(tav::pclose(stream), 0);
}

TEST(Pipe, ACommandThatDoesNotExistEndsWithTheShellsStatus)
{
    FILE *stream = tav::popen("no-such-program 2>/dev/null", "r");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(x_read(stream), "");
    EXPECT_EQ(x_exit_code(tav::pclose(stream)), 127);
}

TEST(Pipe, ACommandThatFloodsIsEndedByClosing)
{
    FILE *stream = tav::popen("exec yes", "r");
    ASSERT_NE(stream, nullptr);
    char bytes[10];
    EXPECT_NE(fgets(bytes, sizeof bytes, stream), nullptr);
    const int status = tav::pclose(stream);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE);
}

TEST(Pipe, SeveralAreOpenAtOnceAndHoldNoneOfTheOthers)
{
    FILE *first = tav::popen("cat", "w");
    FILE *second = tav::popen("cat >/dev/null", "w");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(tav::pclose(first), 0) << "the second command kept the first one's input open";
    EXPECT_EQ(tav::pclose(second), 0);
}

TEST(Pipe, DroppingDoesNotWait)
{
    FILE *stream = tav::popen("exec tail -f /dev/null", "r");
    ASSERT_NE(stream, nullptr);
    tav::pipe_drop(stream);
    EXPECT_EQ(tav::child_reap(), 1);
    EXPECT_EQ(tav::pclose(stream), -1);
    // Nothing tells this command to end; the test has to.
    siginfo_t info = {};
    while (tav::child_reap() > 0) {
        const int self = getpid();
        char command[64];
        std::snprintf(command, sizeof command, "pkill -KILL -P %d tail", self);
        ASSERT_EQ(std::system(command), 0);
        waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
    }
}

TEST(Pipe, ManyThreadsMayOpenAndCloseAtOnce)
{
    std::vector<std::thread> threads;
    std::atomic<int> good = 0;
    for (int i = 0; i < 8; i++) {
        threads.emplace_back([i, &good] {
            for (int k = 0; k < 20; k++) {
                const std::string text = std::to_string(i * 100 + k) + "\n";
                FILE *stream = tav::popen(("echo " + text).c_str(), "r");
                good += stream && x_read(stream) == text && tav::pclose(stream) == 0 ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(good, 160);
}

} // namespace
