// Launching: what a child is given, and what becomes of one that ends, fails or wants a terminal.
#include "launch_fixture.h"

#include <csignal>
#include <sys/resource.h>

using namespace tav;
using namespace std::string_literals;

namespace {

class MiscRun : public LaunchFixture {
protected:
    // Waits until the child has ended or stopped, then looks at it.
    void look_at_change()
    {
        siginfo_t info;
        waitid(P_ALL, 0, &info, WSTOPPED | WEXITED | WNOWAIT);
        misc_tick();
    }
};

TEST_F(MiscRun, TheFirstWordIsLookedUpAlongThePath)
{
    EXPECT_GT(misc_run("show a  b"), 0);
    EXPECT_EQ(received(), (Texts{"a", "b"}));
}

TEST_F(MiscRun, AnAbsoluteFirstWordIsUsedAsItIs)
{
    EXPECT_GT(misc_run(bin + "/show a"), 0);
    EXPECT_EQ(received(), Texts{"a"});
}

TEST_F(MiscRun, TheDirectoryShownIsNeverSearched)
{
    script("../listed/evil", "echo >PWNED");
    setenv("PATH", (":.:" + bin).c_str(), 1);
    EXPECT_EQ(misc_run("evil"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'evil': not found");
}

TEST_F(MiscRun, AFirstWordWithASlashIsTakenFromTheDirectoryShown)
{
    show_directory(root + "/elsewhere");
    std::filesystem::create_directory("sub");
    script("../elsewhere/own", "exec show own \"$@\"");
    script("../elsewhere/sub/own", "exec show below \"$@\"");
    EXPECT_GT(misc_run("./own a"), 0);
    EXPECT_EQ(received(), (Texts{"own", "a"}));
    EXPECT_GT(misc_run("sub/own a"), 0);
    EXPECT_EQ(received(), (Texts{"below", "a"}));
    EXPECT_EQ(misc_run("./missing"), -1);
    EXPECT_EQ(sStatus, "Cannot run './missing': not found");
}

TEST_F(MiscRun, WhereTheSystemMeansSomethingElseByANameOursIsStarted)
{
    have_namesakes({"pv", "pterm", "ls"});
    const std::string usual = "PATH begins with " + bin;
    EXPECT_EQ(file_cmd("pv", "a b.jpg"), 0);
    EXPECT_EQ(received(), (Texts{"pv", "a b.jpg", usual}));
    EXPECT_GT(misc_run("pterm -z x"), 0);
    EXPECT_EQ(received(), (Texts{"pterm", "-z", "x", usual}));
    EXPECT_GT(misc_run("ls"), 0);
    EXPECT_EQ(received(), Texts{"other"}) << "a name that means the same everywhere";
    script("pv", "exec show mine \"$@\"");
    EXPECT_EQ(file_cmd("pv", "a.jpg"), 0);
    EXPECT_EQ(received(), (Texts{"mine", "a.jpg"})) << "the user's own";
}

TEST_F(MiscRun, WhatWantsATerminalIsStartedAgainInOurTerminal)
{
    have_namesakes({"pterm"});
    script("reader", "kill -TTIN $$");
    EXPECT_GT(misc_run("reader a"), 0);
    EXPECT_EQ(received_in_terminal(), (Texts{"pterm", "reader", "a", "PATH begins with " + bin}));
}

TEST_F(MiscRun, TheNumbersDoNothing)
{
    EXPECT_GT(misc_run("show a", 10, 111, 0), 0);
    EXPECT_EQ(received(), Texts{"a"});
}

TEST_F(MiscRun, AnEmptyOrBlankCommandRunsNothing)
{
    EXPECT_EQ(misc_run(""), -1);
    EXPECT_EQ(misc_run("  \t "), -1);
    EXPECT_EQ(sStatus, "");
}

TEST_F(MiscRun, TheTwentyFirstArgumentIsDropped)
{
    std::string line = "show";
    for (int i = 1; i <= 21; i++)
        line += " " + std::to_string(i);
    EXPECT_GT(misc_run(line), 0);
    const std::optional<Texts> arguments = received();
    ASSERT_TRUE(arguments);
    EXPECT_EQ(arguments->size(), 19u);
    EXPECT_EQ(arguments->back(), "19");
}

TEST_F(MiscRun, AnUnclosedQuoteRunsToTheEnd)
{
    EXPECT_GT(misc_run("show \"a b"), 0);
    EXPECT_EQ(received(), Texts{"a b"});
}

TEST_F(MiscRun, ReferencesReachAProgramUnchanged)
{
    EXPECT_GT(misc_run("show $PWD $HOME"), 0);
    EXPECT_EQ(received(), (Texts{"$PWD", "$HOME"}));
}

TEST_F(MiscRun, TheChildKnowsItsGroupAndTheDirectoryShown)
{
    script("tell", "exec show \"$PHIG\" \"$PWD\" \"$(pwd -P)\"");
    show_directory(root + "/elsewhere");
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_GT(misc_run("tell"), 0);
    EXPECT_EQ(received(), (Texts{"1", root + "/elsewhere", root + "/elsewhere"}));
}

TEST_F(MiscRun, WhatCannotBeStartedIsSaid)
{
    EXPECT_EQ(misc_run("no-such-program a"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'no-such-program': not found");
    EXPECT_EQ(misc_run("/no/such/program"), -1);
    EXPECT_EQ(sStatus, "Cannot run '/no/such/program': not found");
    EXPECT_EQ(misc_run(root), -1);
    EXPECT_EQ(sStatus, "Cannot run '" + root + "': Permission denied");
    std::ofstream(bin + "/text") << "just a text\n";
    EXPECT_EQ(misc_run("text"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'text': Permission denied");
    chmod((bin + "/text").c_str(), 0755);
    EXPECT_EQ(misc_run("text"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'text': Exec format error");
}

TEST_F(MiscRun, ADirectoryThatIsGoneIsSaid)
{
    std::filesystem::remove(gDir.path);
    EXPECT_EQ(misc_run("show"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'show': the directory is gone");
}

TEST_F(MiscRun, ACommandTheShellCannotExecuteIsSaid)
{
    EXPECT_EQ(file_cmd("no-such-program @", "a.c"), 0);
    look_at_change();
    EXPECT_EQ(sStatus, "Cannot run 'no-such-program': not found");
    EXPECT_EQ(file_cmd("/ @", "a.c"), 0);
    look_at_change();
    EXPECT_EQ(sStatus, "Cannot run '/': Permission denied");
}

TEST_F(MiscRun, AProgramMayEndWithTheShellsStatusesItself)
{
    for (const char *status : {"126", "127"}) {
        script("ends", "exit "s + status);
        EXPECT_EQ(file_cmd("ends @", "a.c"), 0);
        look_at_change();
        EXPECT_GT(misc_run("ends"), 0);
        look_at_change();
        EXPECT_EQ(sStatus, "");
    }
}

TEST_F(MiscRun, ACommandLongerThanTheSystemTakesIsReported)
{
    EXPECT_EQ(misc_run("show " + std::string(4'000'000, 'x')), -1);
    EXPECT_EQ(sReport, "The command line for 'show' is too long.");
    EXPECT_EQ(sStatus, "");
}

TEST_F(MiscRun, AProgramThatDiesAtOnceLeavesNothingBehind)
{
    script("die", "kill -KILL $$");
    const pid_t pid = misc_run("die");
    ASSERT_GT(pid, 0);
    finish();
    EXPECT_EQ(kill(pid, 0), -1) << "a zombie";
    EXPECT_EQ(misc_tick(), 0);
    EXPECT_EQ(sStatus, "");
}

TEST_F(MiscRun, AProgramThatReadsItsTerminalIsKilledAndStartedAgainInOne)
{
    stand_in("pterm");
    script("reader", "kill -TTIN $$; exec show never");
    const pid_t pid = misc_run("reader \"a b\" c", 10, 111, 0, "-extra");
    ASSERT_GT(pid, 0);
    EXPECT_EQ(received_in_terminal(), (Texts{"reader", "a b", "c", "-extra"}));
    EXPECT_EQ(kill(pid, 0), -1) << "still there";
}

TEST_F(MiscRun, WritingToAForbiddenTerminalCountsToo)
{
    stand_in("pterm");
    script("writer", "kill -TTOU $$");
    EXPECT_GT(misc_run("writer"), 0);
    EXPECT_EQ(received_in_terminal(), Texts{"writer"});
}

TEST_F(MiscRun, AnotherStopIsNoWishForATerminal)
{
    stand_in("pterm");
    script("stopper", "kill -STOP $$; exec show later");
    const pid_t pid = misc_run("stopper");
    look_at_change();
    ASSERT_EQ(kill(pid, SIGCONT), 0);
    EXPECT_EQ(received(), Texts{"later"});
}

TEST_F(MiscRun, ASignalForTheProgramItselfCountsForTheNewestChild)
{
    stand_in("pterm");
    script("waiter", "exec tail -f /dev/null");
    const pid_t older = misc_run("waiter old");
    const pid_t newer = misc_run("waiter new");
    ASSERT_EQ(raise(SIGTTIN), 0);
    misc_tick();
    EXPECT_EQ(kill(older, 0), 0);
    kill(older, SIGKILL);
    wait_for_output();
    EXPECT_EQ(received(), (Texts{"waiter", "new"}));
    EXPECT_EQ(kill(newer, 0), -1);
}

TEST_F(MiscRun, SixLooksAndNoMore)
{
    script("waiter", "exec tail -f /dev/null");
    const pid_t pid = misc_run("waiter");
    for (int look = 1; look < MISC_CHECKS - 1; look++)
        EXPECT_EQ(misc_tick(), 1) << look;
    EXPECT_EQ(misc_tick(), 0);
    kill(pid, SIGKILL);
}

TEST_F(MiscRun, TheWatchIsAskedForOnlyWhenThereIsSomethingToSee)
{
    static int asked = 0;
    asked = 0;
    gMiscHooks.watch = [] { asked++; };
    EXPECT_EQ(misc_run("no-such-program"), -1);
    EXPECT_EQ(asked, 0);
    EXPECT_GT(misc_run("show"), 0);
    EXPECT_EQ(asked, 1);
}

} // namespace
