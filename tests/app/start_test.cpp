// Where the program starts, and the words of the command line.
#include "app/options.h"
#include "app/start.h"

#include "platform/namesake.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <testdir.h>
#include <unistd.h>

namespace tav {
namespace {

using Words = std::vector<const char *>;

std::string orphan(const Words &words)
{
    std::string out;
    x_get_orphan_argument(out, OPTIONS_LETTERS, static_cast<int>(words.size()), words.data());
    return out;
}

std::string start(const Words &words)
{
    return start_path(static_cast<int>(words.size()), words.data());
}

Options parse(const Words &words)
{
    return options_parse(static_cast<int>(words.size()), words.data());
}

// A working directory of its own that holds a directory "docs" and a file "plain".
class StartTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_dir.dir("docs");
        m_dir.file("plain");
        ASSERT_EQ(chdir(m_dir.path().c_str()), 0);
    }
    void TearDown() override { ASSERT_EQ(chdir("/"), 0); }
    TestDir m_dir;
};

TEST_F(StartTest, AValueInAWordOfItsOwnIsTheLeftoverWord)
{
    EXPECT_EQ(orphan({"tav", "-x", "10", "/tmp"}), m_dir.path() + "/10");
    EXPECT_EQ(start({"tav", "-x", "10"}), m_dir.path());
}

TEST_F(StartTest, ARelativeDirectoryOpensBelowTheWorkingDirectory)
{
    EXPECT_EQ(start({"tav", "docs"}), m_dir.path() + "/docs");
}

TEST_F(StartTest, AnAbsoluteDirectoryOpensAsItStands)
{
    EXPECT_EQ(start({"tav", "/tmp"}), "/tmp");
    EXPECT_EQ(orphan({"tav", "/tmp//x/"}), "/tmp//x/");
}

TEST_F(StartTest, AFileOrAMissingPathGivesTheWorkingDirectory)
{
    EXPECT_EQ(start({"tav", "plain"}), m_dir.path());
    EXPECT_EQ(start({"tav", "missing"}), m_dir.path());
    EXPECT_EQ(start({"tav"}), m_dir.path());
    EXPECT_EQ(start({"tav", "-x10", "-Sm"}), m_dir.path());
}

TEST_F(StartTest, AWorkingDirectoryThatIsGoneStartsAtTheRoot)
{
    ASSERT_EQ(chdir("docs"), 0);
    ASSERT_EQ(rmdir((m_dir.path() + "/docs").c_str()), 0);
    EXPECT_EQ(start({"tav"}), "/");
}

// Each test has a home of its own.
class ConfigPathTest : public StartTest {
protected:
    void SetUp() override
    {
        StartTest::SetUp();
        m_home = m_dir.dir("home");
        setenv("HOME", m_home.c_str(), 1);
    }
    std::string find()
    {
        testing::internal::CaptureStderr();
        std::string out;
        m_result = x_get_config_path(out);
        m_said = testing::internal::GetCapturedStderr();
        return out;
    }
    std::string m_home, m_said;
    int m_result = 0;
};

TEST_F(ConfigPathTest, TheFolderIsCreatedForItsUserAlone)
{
    m_dir.dir("home/.ph");
    EXPECT_EQ(find(), m_home + "/.ph/tav");
    EXPECT_EQ(m_said, "");
    struct stat status;
    ASSERT_EQ(stat((m_home + "/.ph/tav").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
    EXPECT_EQ(find(), m_home + "/.ph/tav");
}

TEST_F(ConfigPathTest, WithoutItsParentItIsNotCreated)
{
    EXPECT_EQ(find(), "");
    EXPECT_EQ(m_result, -1);
    EXPECT_EQ(m_said, "TAV error: unable to create config directory " + m_home + "/.ph/tav\n");
}

TEST_F(ConfigPathTest, AFileInItsPlaceIsRefused)
{
    m_dir.dir("home/.ph");
    m_dir.file("home/.ph/tav");
    EXPECT_EQ(find(), "");
    EXPECT_EQ(m_said, "TAV error: unable to access config directory " + m_home + "/.ph/tav\n");
}

TEST_F(ConfigPathTest, WithoutAHomeItLiesInTheRoot)
{
    unsetenv("HOME");
    if (access("/.ph", F_OK) == 0)
        FAIL() << "this machine keeps settings in the root";
    find();
    EXPECT_EQ(m_said, "TAV error: unable to create config directory /.ph/tav\n");
    setenv("HOME", "", 1);
    find();
    EXPECT_EQ(m_said, "TAV error: unable to create config directory /.ph/tav\n");
}

TEST_F(ConfigPathTest, ARelativeHomeIsMadeAbsolute)
{
    m_dir.dir("home/.ph");
    setenv("HOME", "home", 1);
    start_settle_home();
    EXPECT_EQ(getenv("HOME"), m_home);
    EXPECT_EQ(find(), m_home + "/.ph/tav");
}

TEST_F(ConfigPathTest, AHomeThatIsAbsoluteEmptyOrMissingStaysAsItIs)
{
    start_settle_home();
    EXPECT_EQ(getenv("HOME"), m_home);
    setenv("HOME", "", 1);
    start_settle_home();
    EXPECT_STREQ(getenv("HOME"), "");
    unsetenv("HOME");
    start_settle_home();
    EXPECT_EQ(getenv("HOME"), nullptr);
}

TEST_F(StartTest, TheProgramsThatComeAlongAreLookedForLast)
{
    m_dir.dir("bin");
    m_dir.dir("libexec/tav");
    setenv("PATH", "/usr/bin", 1);
    start_append_path(m_dir.path() + "/bin/tav");
    EXPECT_STREQ(
        getenv("PATH"),
        ("/usr/bin:" + m_dir.path() + "/bin/../libexec/tav:" + m_dir.path() + "/bin").c_str());
    EXPECT_EQ(gNamesakeFolder, m_dir.path() + "/bin/../libexec/tav");
    gNamesakeFolder.clear();
}

TEST_F(StartTest, AWindowStartedFromAnotherAppendsNothingMore)
{
    m_dir.dir("bin");
    m_dir.dir("libexec/tav");
    setenv("PATH", "/usr/bin", 1);
    start_append_path(m_dir.path() + "/bin/tav");
    const std::string path = getenv("PATH");
    start_append_path(m_dir.path() + "/bin/tav");
    EXPECT_EQ(path, getenv("PATH"));
    gNamesakeFolder.clear();
}

TEST(OptionsTest, ValuesStandInTheSameWordOrInTheNext)
{
    const Options one = parse({"tav", "-x10", "-y-5", "-h200", "-w300", "-Sm"});
    EXPECT_TRUE(one.has_x && one.has_y);
    EXPECT_EQ(one.x, 10);
    EXPECT_EQ(one.y, -5);
    EXPECT_EQ(one.height, 200);
    EXPECT_EQ(one.width, 300);
    EXPECT_EQ(one.state, 'm');
    const Options two = parse({"tav", "-x", "10", "-y", "-5", "-h", "200", "-w", "300", "-S", "i"});
    EXPECT_EQ(two.x, 10);
    EXPECT_EQ(two.y, -5);
    EXPECT_EQ(two.height, 200);
    EXPECT_EQ(two.width, 300);
    EXPECT_EQ(two.state, 'i');
    EXPECT_EQ(two.error, "");
}

TEST(OptionsTest, WhatMakesNoSenseIsToldAndIgnored)
{
    EXPECT_EQ(parse({"tav", "-Sq"}).error, "bad value for option -S");
    EXPECT_EQ(parse({"tav", "-w"}).error, "bad value for option -w");
    EXPECT_EQ(parse({"tav", "-w0"}).error, "bad value for option -w");
    EXPECT_EQ(parse({"tav", "-h", "99999999999"}).error, "bad value for option -h");
    EXPECT_EQ(parse({"tav", "-x1z"}).error, "bad value for option -x");
    EXPECT_FALSE(parse({"tav", "-x1z"}).has_x);
}

TEST(OptionsTest, WordsOfTheToolkitAreNoneOfOurs)
{
    for (const char *word : {"-style", "-style=fusion", "-stylesheet", "-stylesheet=a.qss",
                             "-session", "-session=1", "-widgetcount"}) {
        const Options options = parse({"tav", word, "-w300"});
        EXPECT_EQ(options.server, "") << word;
        EXPECT_EQ(options.error, "") << word;
        EXPECT_EQ(options.width, 300) << word;
    }
    EXPECT_EQ(parse({"tav", "-server"}).server, "erver");
}

TEST(OptionsTest, HelpShowsTheUsageTextWithTheProgramsName)
{
    EXPECT_TRUE(parse({"tav", "--help"}).help);
    EXPECT_TRUE(parse({"tav", "--version"}).version);
    EXPECT_EQ(options_usage("tav"), R"(tav - This is a QNX/Photon Application.
tav [options]
Options:
  -s server   Server node or device name
  -x x        Initial x position
  -y y        Initial y position
  -h h        Initial h dimension
  -w w        Initial w dimension
  -S i|m|n    Initial window state: i=iconified, m=maximized, n=normal
Examples:
tav -s4
  Run using Photon server on node 4
tav -s//4/dev/photon
  Same as above
tav -x10 -y10 -h200 -w300
  Run at initial position 10,10 with initial 
  dimension of 200x300.
)");
}

TEST(OptionsTest, AServerIsADisplay)
{
    const auto display = [](const char *server) {
        const OptionsDisplay found = options_display(server);
        if (found.variable == nullptr)
            return std::string("none");
        return std::string(found.variable) + "=" + found.value + " " + found.platform;
    };
    EXPECT_EQ(display("4"), "DISPLAY=:4 xcb");
    EXPECT_EQ(display("host:1.0"), "DISPLAY=host:1.0 xcb");
    EXPECT_EQ(display("wayland-1"), "WAYLAND_DISPLAY=wayland-1 wayland");
    EXPECT_EQ(display("//4/dev/photon"), "none");
    EXPECT_EQ(display("x"), "none");
    EXPECT_EQ(display(""), "none");
}

} // namespace
} // namespace tav
