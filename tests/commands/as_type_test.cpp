// What kind of file something is: with a stand-in for the classifier, and without one.
#include "commands/as.h"

#include "hostile_names.h"
#include "launch_fixture.h"

using namespace tav;

namespace {

class AsType : public LaunchFixture {
protected:
    // The description, or "none"; the classifier is a script with that body.
    std::string with(const std::string &body, const char *path, mode_t mode = S_IFREG | 0644)
    {
        script("file", body);
        std::string description = "untouched";
        const int found = as_get_filetype(path, mode, description);
        EXPECT_TRUE(found == 1 || description == "untouched");
        return found ? description : "none";
    }

    std::string by_mode(mode_t mode) { return with("exit 1", "x", mode); }
};

TEST_F(AsType, WhatFollowsTheColonAndABlankNewlineIncluded)
{
    EXPECT_EQ(with("echo 'a.c: C source, ASCII text'", "a.c"), "C source, ASCII text\n");
    EXPECT_EQ(with("echo 'no colon'; echo 'second: line'", "a.c"), "no colon\n");
    EXPECT_EQ(with("printf 'a.c: unfinished'", "a.c"), "unfinished");
    EXPECT_EQ(with("printf 'a.c:'", "a.c"), "");
}

TEST_F(AsType, AColonInTheNameIsNotTheEndOfIt)
{
    EXPECT_EQ(with("echo \"$2: data\"", "a:b: c"), "data\n");
}

TEST_F(AsType, ANameThatComesBackEscapedIsStillSkipped)
{
    std::filesystem::remove(bin + "/file");
    for (const char *name : {"a:b: c\x01", "a\nb: c", ":", "plain.txt"}) {
        std::ofstream(gDir.path + "/" + name) << "text\n";
        std::string description;
        EXPECT_EQ(as_get_filetype(name, S_IFREG, description), 1);
        EXPECT_EQ(description.find_first_not_of(' '), description.find("ASCII text\n")) << name;
    }
}

TEST_F(AsType, TheClassifierIsAskedToFollowLinks)
{
    EXPECT_EQ(with("echo \"x: $# $1\"", "a.c"), "2 -L\n");
}

TEST_F(AsType, TheClassifierReceivesExactlyTheName)
{
    stand_in("file");
    for (const std::string &name : hostile_names()) {
        std::string description;
        as_get_filetype(name.c_str(), S_IFREG, description);
        const std::optional<Texts> arguments = received();
        ASSERT_TRUE(arguments);
        EXPECT_EQ(*arguments, (Texts{"-L", name[0] == '-' ? "./" + name : name}));
    }
    EXPECT_FALSE(std::filesystem::exists("PWNED"));
}

TEST_F(AsType, WithoutAClassifierTheModeDecides)
{
    EXPECT_EQ(by_mode(0x1000), "FIFO");
    EXPECT_EQ(by_mode(0x2000), "Special File");
    EXPECT_EQ(by_mode(0x4000 | 0755), "Directory");
    EXPECT_EQ(by_mode(0x6000), "Block Special File");
    EXPECT_EQ(by_mode(0xA000), "Symbolic Link");
    EXPECT_EQ(by_mode(0x5000), "Special Named File");
    EXPECT_EQ(by_mode(0xC000), "Socket");
    EXPECT_EQ(by_mode(0x7000), "QNX Special Type");
    EXPECT_EQ(by_mode(0xE000 | 0111), "QNX Special Type");
    EXPECT_EQ(by_mode(0x8000 | 0100), "Executable");
    EXPECT_EQ(by_mode(0x8000 | 0010), "Executable");
    EXPECT_EQ(by_mode(0x8000 | 0001), "Executable");
    EXPECT_EQ(by_mode(0x9000 | 0001), "Executable");
    EXPECT_EQ(by_mode(0x8000 | 0644), "Regular File");
    EXPECT_EQ(by_mode(0x9000), "none");
    EXPECT_EQ(by_mode(0), "none");
}

TEST_F(AsType, AClassifierThatFloodsOrClosesEarlyHoldsNothingUp)
{
    EXPECT_EQ(with("exec yes 'a: flood'", "a"), "flood\n");
    EXPECT_EQ(with("exec tr '\\0' x </dev/zero", "a").size(), 2047u);
    EXPECT_EQ(with("kill -KILL $$", "a"), "Regular File");
    script("file", "exec >&-; echo $$ >\"$ARGS_OUT.pid\"; exec tail -f /dev/null");
    std::string description;
    EXPECT_EQ(as_get_filetype("a", S_IFREG, description), 1);
    EXPECT_EQ(description, "Regular File");
    pid_t pid = 0;
    while (pid == 0)
        std::ifstream(out + ".pid") >> pid;
    kill(pid, SIGKILL);
}

} // namespace
