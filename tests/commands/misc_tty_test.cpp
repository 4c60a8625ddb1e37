// A program that reads its terminal, on a terminal: it is stopped by the system, seen, killed and
// started again in a terminal of its own.
#include "launch_fixture.h"
#include "testdir.h"

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tav;

namespace {

// What can go wrong on the other side of the fork.
enum Outcome { GOOD = 0, NOT_STARTED, NEVER_RESTARTED, STILL_THERE, CHILDREN_LEFT };

class MiscTty : public LaunchFixture {
protected:
    MiscTty() { stand_in("pterm"); }

    // Runs the command in a session of its own that has a terminal, as a program does that was
    // started in one, until it has been started again in "pterm".
    int run_on_terminal(const std::string &command)
    {
        int terminal = -1;
        const pid_t session = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (session == 0)
            _exit(watch(command));
        char bytes[512];
        while (read(terminal, bytes, sizeof bytes) > 0) {
        }
        int status = -1;
        waitpid(session, &status, 0);
        close(terminal);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // Whether any process of the group is left; what its own parent has to collect does not count.
    static bool group_lives(pid_t group)
    {
        for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
            std::ifstream file(entry.path() / "stat");
            std::string line;
            if (!std::getline(file, line))
                continue;
            char state = 0;
            int parent = 0, leader = 0;
            const char *fields = line.c_str() + line.rfind(')') + 1;
            if (std::sscanf(fields, " %c %d %d", &state, &parent, &leader) == 3 &&
                leader == group && (state != 'Z' || parent == getpid()))
                return true;
        }
        return false;
    }

    int watch(const std::string &command) const
    {
        const pid_t pid = misc_run(command);
        if (pid < 0)
            return NOT_STARTED;
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(pid), &info, WSTOPPED | WEXITED | WNOWAIT);
        misc_tick();
        wait_for_output();
        finish();
        if (!std::filesystem::exists(out))
            return NEVER_RESTARTED;
        if (!test_wait([pid] { return !group_lives(pid); }))
            return STILL_THERE;
        return waitpid(-1, nullptr, WNOHANG) == -1 ? GOOD : CHILDREN_LEFT;
    }
};

TEST_F(MiscTty, AReaderIsStartedAgainInATerminal)
{
    script("reader", "read -r line; exec show got \"$line\"");
    EXPECT_EQ(run_on_terminal("reader \"a b\""), GOOD);
    EXPECT_EQ(received(), (Texts{"reader", "a b"}));
}

TEST_F(MiscTty, OneThatOpensTheTerminalItselfToo)
{
    script("reader", "read -r line </dev/tty; exec show got \"$line\"");
    EXPECT_EQ(run_on_terminal("sh -c \"exec reader x\""), GOOD);
    EXPECT_EQ(received(), (Texts{"sh", "-c", "exec reader x"}));
}

TEST_F(MiscTty, OneThatSetsTheTerminalToo)
{
    script("setter", "stty -echo; exec show got");
    EXPECT_EQ(run_on_terminal("setter"), GOOD);
    EXPECT_EQ(received(), Texts{"setter"});
}

TEST_F(MiscTty, WhatAReaderHadStartedGoesWithIt)
{
    script("family", "cat </dev/tty & wait");
    EXPECT_EQ(run_on_terminal("family"), GOOD);
    EXPECT_EQ(received(), Texts{"family"});
}

TEST_F(MiscTty, OneThatOnlyWritesIsLeftAlone)
{
    script("writer", "echo hello; exec show done");
    EXPECT_EQ(run_on_terminal("writer"), GOOD);
    EXPECT_EQ(received(), Texts{"done"});
}

} // namespace
