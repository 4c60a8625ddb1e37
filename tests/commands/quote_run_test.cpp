// Names never become commands: whatever bytes a name is made of, and whatever the template looks
// like, the program that is started receives exactly that name.
#include "commands/quote.h"
#include "hostile_names.h"
#include "launch_fixture.h"

#include <cctype>
#include <random>

using namespace tav;
using namespace std::string_literals;

namespace {

// What a name has to arrive as where it begins an argument.
std::string x_at_front(const std::string &name)
{
    return name.starts_with('-') ? "./" + name : name;
}

struct Form {
    const char *name;
    const char *command;
    const char
        *before; // what stands in the argument before and behind the name; "$" the shown directory
    const char *behind;
    bool odd = false; // ordinary names get the marks of ordinary templates, which do not fit here
};

const Form FORMS[] = {
    {"no placeholder, no blank", "show", "", ""},
    {"no placeholder, an option", "show -x", "", ""},
    {"bare", "show @", "", ""},
    {"bare in a word", "show pre-@-post", "pre-", "-post"},
    {"bare, twice", "show @ @", "", ""},
    {"single quotes", "show '@'", "", ""},
    {"single quotes around a word", "show 'pre-@-post'", "pre-", "-post", true},
    {"single quotes beside it", "show 'a'@'b'", "a", "b", true},
    {"double quotes", "show \"@\"", "", ""},
    {"double quotes around a word", "show \"pre-@-post\"", "pre-", "-post"},
    {"single inside double quotes", "show \"'@'\"", "'", "'"},
    {"a backslash before it", "show \\@", "", "", true},
    {"without blanks", "show\t@", "", ""},
    {"without blanks, single quotes", "show\t'@'", "", ""},
    {"without blanks, double quotes", "show\t\"@\"", "", ""},
    {"without blanks, in a word", "show\tpre-@-post", "pre-", "-post"},
    {"an address", "show file://$PWD/@", "file://$/", ""},
    {"an address in double quotes", "show \"file://$PWD/@\"", "file://$/", ""},
    {"behind a comment sign in a word", "show a#@", "a#", ""},
    {"in a substitution", "show \"$(printf '%s.' \"@\")\"", "", "."},
    {"in a bare substitution", "show \"$(printf '%s.' @)\"", "", "."},
    {"behind a setting", "env X=1 show @", "", ""},
    {"a further shell in single quotes", "sh -c 'show @ ; exit'", "", ""},
    {"a further shell in single quotes, at the end", "sh -c 'exec show @'", "", "", true},
    {"a further shell, quoted there", "sh -c 'exec show \"@\"'", "", ""},
    {"a further shell in double quotes", "sh -c \"exec show @\"", "", ""},
    {"a further shell, escaped there", "sh -c \"exec show \\\"@\\\"\"", "", ""},
    {"a further shell, in a word", "sh -c 'show pre-@-post'", "pre-", "-post"},
};

std::string x_expected(const Form &form, const std::string &name)
{
    std::string before = form.before;
    const size_t directory = before.find('$');
    if (directory != before.npos)
        before.replace(directory, 1, gDir.path);
    return before + (before.empty() ? x_at_front(name) : name) + form.behind;
}

std::string x_printable(const std::string &bytes)
{
    std::string out;
    char hex[8];
    for (const char byte : bytes) {
        std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(byte));
        out += std::isprint(static_cast<unsigned char>(byte)) ? std::string(1, byte) : hex;
    }
    return out;
}

class QuoteRun : public LaunchFixture {
protected:
    // What is received may have "-x" before and the same once more behind it.
    void expect_arrives(const Form &form, const std::string &name)
    {
        SCOPED_TRACE(form.name + ": "s + x_printable(name));
        EXPECT_EQ(file_cmd(form.command, name.c_str()), 0);
        const std::optional<Texts> arguments = received();
        ASSERT_TRUE(arguments) << "nothing ran; " << sStatus;
        ASSERT_FALSE(arguments->empty());
        EXPECT_EQ(x_printable(arguments->back()), x_printable(x_expected(form, name)));
        EXPECT_LE(arguments->size(), 2u);
        EXPECT_FALSE(std::filesystem::exists("PWNED"));
    }
};

TEST_F(QuoteRun, HostileNamesArriveThroughEveryTemplateForm)
{
    const Texts names = hostile_names();
    ASSERT_GE(names.size(), 60u);
    for (const Form &form : FORMS) {
        for (const std::string &name : names) {
            if (!form.odd || !quote_is_plain(name))
                expect_arrives(form, name);
            if (HasFatalFailure())
                return;
        }
    }
}

TEST_F(QuoteRun, OrdinaryNamesArriveToo)
{
    for (const Form &form : FORMS) {
        for (const char *name : {"a.c", "my file.c",
                                 "Gr\xC3\xB6\xC3\x9F"
                                 "e ~1",
                                 "a=b,c+d%e^f:g"}) {
            if (!form.odd)
                expect_arrives(form, name);
        }
    }
}

TEST_F(QuoteRun, AnyDirectoryIsOneWord)
{
    for (const char *directory :
         {"a b", "$(touch PWNED)", "a;b", "a*", "`x`", "a'b", "a\"b", "\xFF"}) {
        show_directory(root + "/" + directory);
        for (const char *command : {"show file://$PWD/@", "show file://${PWD}/@"}) {
            const Form form = {directory, command, "file://$/", ""};
            expect_arrives(form, "a b");
            expect_arrives(form, "a'b\"c$d");
        }
    }
}

TEST_F(QuoteRun, ANameIsRefusedWhereItCannotBeEscaped)
{
    for (const char *command : {"show `printf @`", "show ${X:-@}", "show $((@))"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(file_cmd(command, "$(touch PWNED)"), -1);
        EXPECT_NE(sStatus.find("Cannot put this name into"), std::string::npos);
        EXPECT_FALSE(received());
        sStatus.clear();
    }
    EXPECT_FALSE(std::filesystem::exists("PWNED"));
}

TEST_F(QuoteRun, ANameInACommentEndsNothing)
{
    EXPECT_EQ(file_cmd("show @ # @", "a\ntouch PWNED\n"), 0);
    EXPECT_EQ(received(), Texts{"a\ntouch PWNED\n"});
    EXPECT_FALSE(std::filesystem::exists("PWNED"));
}

TEST_F(QuoteRun, SeveralHostileNamesArriveOneByOne)
{
    Texts names = hostile_names();
    names.insert(names.begin(), "ordinary one");
    names.emplace_back("ordinary two");
    Texts expected;
    for (const std::string &name : names)
        expected.push_back(x_at_front(name));
    list(names, true);
    for (const char *command :
         {"show @", "show '@'", "show \"@\"", "show", "show\t@", "show\t'@'", "show\t\"@\""}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(file_cmd(command, nullptr), 0);
        const std::optional<Texts> arguments = received();
        ASSERT_TRUE(arguments);
        // A line that no shell reads is cut at twenty arguments.
        const bool direct = std::strchr(command, '\t') != nullptr;
        Texts wanted = expected;
        if (direct)
            wanted.resize(MISC_ARGUMENTS - 1);
        EXPECT_EQ(*arguments, wanted);
    }
    EXPECT_FALSE(std::filesystem::exists("PWNED"));
}

TEST_F(QuoteRun, TheListedFileItselfIsOneArgument)
{
    for (const std::string &name : hostile_names()) {
        if (name.find('/') != name.npos)
            continue;
        const std::string path = gDir.path + "/" + name;
        std::filesystem::create_symlink(test::write_args_path(), path);
        EXPECT_GT(misc_run_program(path), 0) << x_printable(name);
        EXPECT_EQ(received(), Texts{}) << x_printable(name);
        std::filesystem::remove(path);
    }
}

TEST_F(QuoteRun, HostileNamesArriveInATerminalToo)
{
    script("show_tty", "if [ -n \"$IN_PTERM\" ]; then exec show \"$@\"; fi; kill -TTIN $$");
    script("pterm", "IN_PTERM=1 exec \"$@\"");
    std::string directory = root + "/$(touch PWNED) b";
    for (const char *command :
         {"show_tty @", "show_tty '@'", "show_tty\t@", "show_tty file://$PWD/@"}) {
        for (const char *name : {"a b.c", "$(touch PWNED)", "`x`", "a'b", "a\"b\\", "-x", "a\n b",
                                 "\xFF@", "\\\"", "'\"$"}) {
            SCOPED_TRACE(command + ": "s + x_printable(name));
            EXPECT_EQ(file_cmd(command, name), 0);
            const std::optional<Texts> arguments = received_in_terminal();
            ASSERT_TRUE(arguments);
            const bool address = std::strstr(command, "file:") != nullptr;
            EXPECT_EQ(arguments->back(),
                      address ? "file://" + gDir.path + "/" + name : x_at_front(name));
            EXPECT_FALSE(std::filesystem::exists("PWNED"));
        }
        show_directory(directory);
    }
}

// Random bytes, with what is special more often than not.
std::string x_random_name(std::mt19937 &random)
{
    static const std::string special = "\"'\\$`;&|<>()*?[]{}~#!@ \t\n-=\xFF\x81\x88"
                                       "ab./"s;
    std::uniform_int_distribution<size_t> length(1, 24);
    std::uniform_int_distribution<size_t> pick(0, special.size() - 1);
    std::uniform_int_distribution<int> any(1, 255);
    std::string name;
    for (size_t left = length(random); left > 0; left--) {
        const char byte = random() % 4 ? special[pick(random)] : static_cast<char>(any(random));
        name += byte == '/' ? '_' : byte;
    }
    return name;
}

TEST_F(QuoteRun, AHundredThousandRandomNamesArrive)
{
    constexpr int NAMES = 102'000, BATCH = 500;
    const char *commands[] = {"show @", "show '@'", "show \"@\""};
    std::mt19937 random(20240513);
    for (int done = 0; done < NAMES; done += BATCH) {
        Texts names, expected;
        for (int i = 0; i < BATCH; i++) {
            names.push_back(x_random_name(random));
            expected.push_back(x_at_front(names.back()));
        }
        list(names, true);
        const char *command = commands[done / BATCH % 3];
        ASSERT_EQ(file_cmd(command, nullptr), 0) << sReport;
        const std::optional<Texts> arguments = received();
        ASSERT_TRUE(arguments) << command << ", batch " << done / BATCH;
        ASSERT_EQ(arguments->size(), expected.size());
        for (size_t i = 0; i < expected.size(); i++)
            ASSERT_EQ(x_printable((*arguments)[i]), x_printable(expected[i])) << command;
    }
}

} // namespace
