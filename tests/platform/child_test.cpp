// How children start, and that none is ever left behind.
#include "platform/child.h"

#include "testdir.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>

using namespace tav;
using namespace std::string_literals;

namespace {

// Runs shell text as a child and returns what it writes.
std::string x_output(const std::string &text, ChildStart start = {})
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    start.program = "/bin/sh";
    start.argv = {"sh", "-c", text};
    start.descriptors[1] = ends[1];
    const pid_t pid = child_start(start);
    EXPECT_GT(pid, 0);
    close(ends[1]);
    std::string out;
    char bytes[512];
    for (ssize_t count; (count = read(ends[0], bytes, sizeof bytes)) > 0;)
        out.append(bytes, static_cast<size_t>(count));
    close(ends[0]);
    EXPECT_EQ(waitpid(pid, nullptr, 0), pid);
    return out;
}

pid_t x_start_shell(const std::string &text)
{
    ChildStart start;
    start.program = "/bin/sh";
    start.argv = {"sh", "-c", text};
    return child_start(start);
}

TEST(Child, HasDefaultSignalsAndAnEmptyMask)
{
    const auto old_pipe = std::signal(SIGPIPE, SIG_IGN);
    const auto old_usr = std::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const std::string out = x_output("exec grep -E '^Sig(Blk|Ign):' /proc/self/status");
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGPIPE, old_pipe);
    std::signal(SIGUSR1, old_usr);
    unsigned long mask = 1, ignored = 1;
    ASSERT_EQ(std::sscanf(out.c_str(), "SigBlk: %lx SigIgn: %lx", &mask, &ignored), 2) << out;
    EXPECT_EQ(mask, 0ul);
    EXPECT_EQ(ignored & ~0x180000000ul, 0ul); // the C library keeps 32 and 33 to itself
}

TEST(Child, InheritsThreeDescriptorsOnly)
{
    const int ours = fcntl(0, F_DUPFD, 40);
    ASSERT_GE(ours, 40);
    EXPECT_EQ(x_output("for n in 0 1 2 " + std::to_string(ours) +
                       "; do [ -e /proc/$$/fd/$n ] && echo $n; done"),
              "0\n1\n2\n");
    close(ours);
}

TEST(Child, StartsInTheGivenDirectory)
{
    TestDir dir;
    ChildStart start;
    const std::string path = dir.dir("a b");
    start.directory = path.c_str();
    EXPECT_EQ(x_output("pwd", start), path + "\n");
    start.directory = "/no/such/directory";
    start.program = "/bin/true";
    start.argv = {"true"};
    EXPECT_EQ(child_start(start), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Child, GetsOurEnvironmentWithSomeReplaced)
{
    TestEnv kept("TAV_KEPT", "kept"), replaced("TAV_REPLACED", "old");
    ChildStart start;
    start.set_env = {"TAV_REPLACED=new", "TAV_ADDED=a=b"};
    EXPECT_EQ(
        x_output("echo $TAV_KEPT $TAV_REPLACED $TAV_ADDED; env | grep -c TAV_REPLACED", start),
        "kept new a=b\n1\n");
}

TEST(Child, IsAGroupOfItsOwn)
{
    EXPECT_EQ(x_output("read -r a b c d group rest </proc/self/stat; [ $group = $$ ] && echo yes"),
              "yes\n");
}

TEST(Child, SwappedDescriptorsArriveWhereTheyBelong)
{
    TestDir dir;
    const int out = open(dir.at("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int err = open(dir.at("err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int saved[2] = {dup(1), dup(2)};
    dup2(out, 1);
    dup2(err, 2);
    ChildStart start;
    start.program = "/bin/sh";
    start.argv = {"sh", "-c", "echo to-1; echo to-2 >&2"};
    start.descriptors[1] = 2;
    start.descriptors[2] = 1;
    const pid_t pid = child_start(start);
    dup2(saved[0], 1);
    dup2(saved[1], 2);
    for (const int descriptor : {out, err, saved[0], saved[1]})
        close(descriptor);
    ASSERT_GT(pid, 0);
    EXPECT_EQ(waitpid(pid, nullptr, 0), pid);
    EXPECT_EQ(dir.read("out"), "to-2\n");
    EXPECT_EQ(dir.read("err"), "to-1\n");
}

TEST(Child, WhatCannotBeExecutedIsAnError)
{
    ChildStart start;
    start.program = "/no/such/program";
    start.argv = {"x"};
    EXPECT_EQ(child_start(start), -1);
    EXPECT_EQ(errno, ENOENT);
    start.program = "/";
    EXPECT_EQ(child_start(start), -1);
    EXPECT_EQ(errno, EACCES);
    start.argv.clear();
    EXPECT_EQ(child_start(start), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(Child, KeptOnesAreCollectedWithTheirStatus)
{
    int status = -1;
    const pid_t pid = x_start_shell("exit 7");
    child_keep(pid, [&](pid_t ended, int its) { status = ended == pid ? its : -2; });
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT);
    EXPECT_EQ(child_reap(), 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7);
    EXPECT_EQ(kill(pid, 0), -1) << "a zombie";
}

TEST(Child, OthersAreLeftToTheirOwners)
{
    const pid_t pid = x_start_shell("exit 5");
    siginfo_t info;
    waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT);
    child_reap();
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(WEXITSTATUS(status), 5);
    EXPECT_EQ(WEXITSTATUS(std::system("exit 6")), 6);
}

TEST(Child, AHundredChildrenLeaveNoZombie)
{
    for (int i = 0; i < 100; i++)
        child_keep(x_start_shell(":"), {});
    siginfo_t info;
    while (child_reap() > 0)
        waitid(P_ALL, 0, &info, WEXITED | WNOWAIT);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(Child, WantingATerminalIsSeenOnTheChild)
{
    for (const auto &[signal, wants] : {std::pair{"TTIN", true}, {"TTOU", true}, {"STOP", false}}) {
        const pid_t pid = x_start_shell("kill -"s + signal + " $$");
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(pid), &info, WSTOPPED | WNOWAIT);
        EXPECT_EQ(child_wants_terminal(pid), wants) << signal;
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        EXPECT_FALSE(child_wants_terminal(pid));
    }
}

TEST(Child, AProgramIsFoundAlongThePath)
{
    TestDir dir;
    dir.dir("one/prog"); // a directory is no program
    dir.dir("two");
    dir.text("two/prog", "", 0644);
    dir.dir("three");
    dir.text("three/prog", "", 0755);
    const std::string path = dir.at("one") + ":" + dir.at("two") + "::" + dir.at("three");
    EXPECT_EQ(child_find_program("prog", path.c_str()), dir.at("three/prog"));
    EXPECT_EQ(child_find_program("/any/thing", path.c_str()), "/any/thing");
    EXPECT_EQ(child_find_program("./prog", path.c_str()), "./prog");
    EXPECT_EQ(child_find_program("sub/prog", path.c_str()), "sub/prog");
    EXPECT_EQ(child_find_program("missing", path.c_str()), "");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(child_find_program("prog", dir.at("two").c_str()), "");
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(child_find_program("", path.c_str()), "");
}

} // namespace
