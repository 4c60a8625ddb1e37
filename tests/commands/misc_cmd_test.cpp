// From template and selection to the exact arguments of the shell: a stand-in "sh" writes them
// down.
#include "commands/quote.h"
#include "launch_fixture.h"

#include <algorithm>

using namespace tav;

namespace {

std::string x_marked(std::string text)
{
    std::replace(text.begin(), text.end(), '^', QUOTE_MARK);
    return text;
}

class MiscCmd : public LaunchFixture {
protected:
    MiscCmd() { stand_in("sh"); }

    // What the shell was told to run for these selected names.
    std::string told(const char *command, const Texts &names)
    {
        list(names, true);
        gDir.current = DIR_NONE;
        EXPECT_EQ(file_cmd(command, nullptr), 0);
        return shell_text();
    }

    std::string told_one(const char *command, const char *name)
    {
        EXPECT_EQ(file_cmd(command, name), 0);
        return shell_text();
    }

    std::string shell_text()
    {
        const std::optional<Texts> arguments = received();
        if (!arguments || arguments->size() != 2 || (*arguments)[0] != "-c")
            return "no shell was told anything";
        return (*arguments)[1];
    }
};

TEST_F(MiscCmd, PedForMyFileRunsTheShellWithTheNameInDoubleQuotes)
{
    EXPECT_EQ(told_one("ped", "my file.c"), "exec ped \"my file.c\"");
}

TEST_F(MiscCmd, ATemplateWithoutAPlaceholderGetsOneAppended)
{
    EXPECT_EQ(told_one("lp -dtext", "a.c"), "exec lp -dtext \"a.c\"");
}

TEST_F(MiscCmd, SingleQuotesStayTheOnlyQuotes)
{
    EXPECT_EQ(told_one("ped '@'", "my file.c"), "exec ped 'my file.c'");
    EXPECT_EQ(told("ped '@'", {"a b", "c"}), "exec ped 'a b' 'c'");
    EXPECT_EQ(told("ped '@'", {"a b"}), "exec ped 'a b'");
}

TEST_F(MiscCmd, SeveralOrdinaryNamesAtABarePlaceholderKeepTheirLopsidedQuotes)
{
    EXPECT_EQ(told("ped @", {"a b", "c"}), "exec ped \"a b' 'c'");
    EXPECT_EQ(told("ped", {"a", "b", "c"}), "exec ped \"a' 'b' 'c'");
}

TEST_F(MiscCmd, ReferencesReachTheShellUnchanged)
{
    EXPECT_EQ(told_one("voyager -u file://$PWD/@", "a.html"),
              "exec voyager -u file://$PWD/\"a.html\"");
}

TEST_F(MiscCmd, OddlyQuotedPlaceholdersKeepTheirMarksForOrdinaryNames)
{
    EXPECT_EQ(told_one("ped 'a@'", "x"), "exec ped 'a\"x'");
    EXPECT_EQ(told_one("ped 'a'@", "x"), "exec ped 'a'x\"");
}

TEST_F(MiscCmd, ATemplateWithoutBlanksRunsWithoutAShell)
{
    EXPECT_EQ(file_cmd("show\t@", "my file.c"), 0);
    EXPECT_EQ(received(), Texts{"my file.c"});
}

TEST_F(MiscCmd, WithNothingSelectedTheCursorEntryIsMeant)
{
    list({"first", "second"}, false);
    gDir.current = 1;
    EXPECT_EQ(file_cmd("ped", nullptr), 0);
    EXPECT_EQ(shell_text(), "exec ped \"second\"");
    gDir.current = DIR_NONE;
    EXPECT_EQ(file_cmd("ped", nullptr), -1);
    gDir.current = DIR_PARENT;
    EXPECT_EQ(file_cmd("ped", nullptr), -1);
}

TEST_F(MiscCmd, ADirectoryUnderTheCursorRefusesAlsoAGivenName)
{
    list({"docs/", "a.c"}, false);
    gDir.nselected = 1;
    entries[1]->flags = DIR_SELECTED;
    EXPECT_EQ(file_cmd("ped", "a.c"), -1);
    EXPECT_EQ(file_cmd("ped", nullptr), -1);
    EXPECT_FALSE(received());
}

TEST_F(MiscCmd, ADirectoryAmongTheSelectedRunsNothing)
{
    list({"a.c", "docs/", "b.c"}, true);
    EXPECT_EQ(file_cmd("ped '@'", nullptr), -1);
    EXPECT_FALSE(received());
}

TEST_F(MiscCmd, ABlankTemplateRunsNothing)
{
    for (const char *blank : {"", " ", " \t\n"})
        EXPECT_EQ(file_cmd(blank, "a.c"), 0);
    EXPECT_FALSE(received());
}

TEST_F(MiscCmd, AProgramThatIsMissingIsSaid)
{
    std::filesystem::remove(bin + "/sh");
    setenv("PATH", bin.c_str(), 1);
    EXPECT_EQ(file_cmd("ped", "a.c"), -1);
    EXPECT_EQ(sStatus, "Cannot run 'sh': not found");
}

TEST(MiscMakeCmd, ReplacesEveryMarkerOrAppendsTheName)
{
    std::string out;
    misc_make_cmd(out, "cmp @ @", "a b", '@');
    EXPECT_EQ(out, "cmp a b a b");
    misc_make_cmd(out, "ped", "a", '@');
    EXPECT_EQ(out, "ped a");
    misc_make_cmd(out, "ped %", "a", '%');
    EXPECT_EQ(out, "ped a");
    misc_make_cmd(out, "ped @", "a", '%');
    EXPECT_EQ(out, "ped @ a");
}

TEST(MiscMakeCmd2, PutsANameBeforeTheFirstMarkerWhichStays)
{
    std::string out;
    misc_make_cmd2(out, "ped '@' @", "a", '@');
    EXPECT_EQ(out, "ped 'a' '@' @");
    misc_make_cmd2(out, "ped '@'", "a@b", '@');
    std::string twice;
    misc_make_cmd2(twice, out, "c", '@');
    EXPECT_EQ(quote_split(twice, 9).back(), "'@'");
    EXPECT_EQ(quote_split(twice, 9).size(), 4u);
    misc_make_cmd2(out, "ped", "a", '@');
    EXPECT_EQ(out, "ped a");
}

TEST(MiscTerminalText, MarksBecomeEscapedQuotesAndExtraFollows)
{
    gDir.path = "/tmp";
    gDir.has_path = true;
    EXPECT_EQ(misc_terminal_text(x_marked("sh -c \"exec vi ^my file.c^\""), nullptr),
              "pterm sh -c \"exec vi \\\"my file.c\\\"\"  &");
    EXPECT_EQ(misc_terminal_text("vi a.c", "-x"), "pterm vi a.c -x &");
    EXPECT_EQ(misc_terminal_text("sh -c \"exec vi $PWD/a\"", ""),
              "pterm sh -c \"exec vi $PWD/a\"  &");
    gDir = {};
    gDir.current = -1;
}

} // namespace
