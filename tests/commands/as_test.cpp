// The table of associations, its file, and the classifier.
#include "commands/as.h"

#include "testdir.h"

#include <gmock/gmock.h>

using namespace tav;
using namespace std::string_literals;
using testing::StrEq;

namespace {

// The rows as the file has them.
std::vector<std::string> x_rows()
{
    std::vector<std::string> rows;
    for (const Association &row : apat)
        rows.push_back(as_join(row));
    return rows;
}

class As : public testing::Test {
protected:
    // Reads a file of that content; the message, or empty.
    std::string read(std::string_view content)
    {
        std::string message;
        const int result = as_read(dir.text("associate.003", content).c_str(), message);
        EXPECT_EQ(result, message.empty() ? 0 : -1);
        return message;
    }

    TestDir dir;
};

TEST_F(As, TheBuiltInRowsInOrder)
{
    as_set_defaults();
    EXPECT_THAT(x_rows(), testing::ElementsAre(
                              "*.[ch]\tped\tped\tped", "[Mm]akefile\tpterm -z make -f @\tped\tped",
                              "*.txt\tped\tped\tped", "*.core\tpterm -z coreinfo @\t\t",
                              "^*.jpg|*.jpeg|*.gif|*.bmp\tpv\tpv\tpv",
                              "^*.html|*.htm\tvoyager -u file://$PWD/@\tvoyager -u file://$PWD/@\t",
                              "^*.rm|*.rm|*.ram|*.smi|*.smil\trealplay\trealplay\t",
                              "^*.wav|*.aif|*.aiff\tphplay\tphplay\t",
                              "^*.mpeg|*.mp[123agv]|*.au|*.iff\tphplay\tphplay\t",
                              "^*.ttf|*.pfr|*.phf|*.ffs\tcp $PWD/@ /usr/photon/font\t\t"));
}

TEST_F(As, AShoutedMakefileMatchesNothingButAShoutedPictureDoes)
{
    as_set_defaults();
    EXPECT_EQ(_get_pat_idx("MAKEFILE"), -1);
    EXPECT_EQ(_get_pat_idx("Makefile"), 1);
    EXPECT_EQ(_get_pat_idx("PHOTO.JPG"), 4);
    EXPECT_EQ(_get_pat_idx("A.C"), -1);
    EXPECT_EQ(_get_pat_idx(""), -1);
}

TEST_F(As, TheFirstMatchDecidesEvenWhenItsCommandIsBlank)
{
    EXPECT_EQ(read("*.[ch]\t \tped\n*\tshow\n"), "");
    EXPECT_EQ(_get_pat_cmd("a.c", AS_OPEN), nullptr);
    EXPECT_THAT(_get_pat_cmd("a.c", AS_VIEW), StrEq("ped"));
    EXPECT_EQ(_get_pat_cmd("a.c", AS_EDIT), nullptr);
    EXPECT_THAT(_get_pat_cmd("other", AS_OPEN), StrEq("show"));
}

TEST_F(As, WithoutAFileTheBuiltInRowsCount)
{
    std::string message;
    EXPECT_EQ(as_read(dir.at("missing").c_str(), message), 0);
    EXPECT_EQ(apat.size(), 10u);
    EXPECT_EQ(as_read(nullptr, message), 0);
    EXPECT_EQ(apat.size(), 10u);
    EXPECT_FALSE(dir.exists("missing"));
}

TEST_F(As, ADirectoryInTheFilesPlaceIsNoFile)
{
    std::string message;
    EXPECT_EQ(as_read(dir.dir("associate.003").c_str(), message), 0);
    EXPECT_EQ(apat.size(), 10u);
}

TEST_F(As, AFileThatMayNotBeReadIsNoFile)
{
    const std::string path = dir.text("associate.003", "*.x\tshow\n", 0);
    const uid_t other = geteuid() == 0 ? 65534 : geteuid();
    ASSERT_EQ(seteuid(other), 0);
    std::string message;
    const int result = as_read(path.c_str(), message);
    ASSERT_EQ(seteuid(getuid()), 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(apat.size(), 10u);
}

TEST_F(As, CommentsOnlyMakeAnEmptyTable)
{
    EXPECT_EQ(read("# one\n#two\n"), "");
    EXPECT_TRUE(apat.empty());
    EXPECT_EQ(read(""), "");
    EXPECT_TRUE(apat.empty());
}

TEST_F(As, TwoFieldsLeaveViewAndEditEmpty)
{
    EXPECT_EQ(read("*.x\tshow\n"), "");
    EXPECT_EQ(x_rows(), std::vector<std::string>{"*.x\tshow\t\t"});
}

TEST_F(As, AFifthFieldIsDropped)
{
    EXPECT_EQ(read("*.x\ta\tb\tc\td\te\n"), "");
    EXPECT_EQ(x_rows(), std::vector<std::string>{"*.x\ta\tb\tc"});
}

TEST_F(As, ALineWithoutATabIsFatalAndCommentsDoNotCount)
{
    EXPECT_EQ(read("# comment\n*.x\tshow\n# another\nno tab here\n"),
              "Invalid association at line 2");
    EXPECT_EQ(read("\n"), "Invalid association at line 1");
    EXPECT_EQ(read("*.x\tshow\n\n"), "Invalid association at line 2");
}

TEST_F(As, ALineIsReadInPiecesOf1023Bytes)
{
    EXPECT_EQ(read("*.x\t"s + std::string(1018, 'a') + "\n"), "");
    EXPECT_EQ(apat.size(), 1u);
    EXPECT_EQ(read("*.x\t"s + std::string(1019, 'a') + "\n"), "Invalid association at line 2");
    EXPECT_EQ(read("*.x\t"s + std::string(1100, 'a') + "\n"), "Invalid association at line 2");
}

TEST_F(As, TheLastLineNeedsNoNewline)
{
    EXPECT_EQ(read("*.x\tshow"), "");
    EXPECT_EQ(x_rows(), std::vector<std::string>{"*.x\tshow\t\t"});
}

TEST_F(As, OddBytesAreKept)
{
    EXPECT_EQ(read("*.\xFF\tshow \xC3\n*.y\tped\r\n"), "");
    EXPECT_EQ(x_rows(), (std::vector<std::string>{"*.\xFF\tshow \xC3\t\t", "*.y\tped\r\t\t"}));
    EXPECT_EQ(_get_pat_idx("a.\xFF"), 0);
    EXPECT_EQ(read("*.y\t\r\n"), "");
    EXPECT_EQ(_get_pat_cmd("a.y", AS_OPEN), nullptr);
}

TEST_F(As, ALineEndsAtANul)
{
    EXPECT_EQ(read("*.x\ta\0b\tc\n"s), "");
    EXPECT_EQ(x_rows(), std::vector<std::string>{"*.x\ta\t\t"});
    EXPECT_EQ(read("*.x\0\ta\n"s), "Invalid association at line 1");
}

TEST_F(As, ManyRowsAreRead)
{
    std::string content;
    for (int i = 0; i < 1000; i++)
        content += "*." + std::to_string(i) + "\tshow\n";
    EXPECT_EQ(read(content), "");
    EXPECT_EQ(apat.size(), 1000u);
    EXPECT_EQ(_get_pat_idx("a.999"), 999);
}

TEST_F(As, TheFileIsWrittenAsItIsRead)
{
    dir.text("associate.003", "*.x\tshow\n");
    init_read_associations(dir.path().c_str(), "associate.003");
    _add_pat("^*.y|*.z", "a @", "b", "c");
    EXPECT_EQ(as_write(), 0);
    EXPECT_EQ(dir.read("associate.003"),
              "# <pattern[|pattern[..]]> \\t <open_command> \\t <view_command> \\t <edit command>\n"
              "*.x\tshow\t\t\n^*.y|*.z\ta @\tb\tc\n");
    const auto rows = x_rows();
    init_read_associations(dir.path().c_str(), "associate.003");
    EXPECT_EQ(x_rows(), rows);
}

TEST_F(As, WithoutASettingsDirectoryNothingIsWritten)
{
    ASSERT_EQ(chdir(dir.path().c_str()), 0);
    init_read_associations(nullptr, "associate.003");
    EXPECT_EQ(apat.size(), 10u);
    EXPECT_EQ(as_write(), -1);
    EXPECT_TRUE(dir.names().empty());
}

TEST_F(As, TheTableStaysWhenTheFileCannotBeWritten)
{
    init_read_associations(dir.at("no/such").c_str(), "associate.003");
    _add_pat("*.y", "a", "", "");
    EXPECT_EQ(as_write(), -1);
    EXPECT_EQ(apat.size(), 11u);
}

TEST_F(As, AMalformedFileEndsTheProgramWithStatusOne)
{
    dir.text("associate.003", "nothing\n");
    gAsFatal = nullptr;
    EXPECT_EXIT(init_read_associations(dir.path().c_str(), "associate.003"),
                testing::ExitedWithCode(1), "Invalid association at line 1");
    EXPECT_EXIT(
        {
            gAsFatal = [](const char *message) { fprintf(stderr, "box: %s", message); };
            init_read_associations(dir.path().c_str(), "associate.003");
        },
        testing::ExitedWithCode(1), "box: Invalid association at line 1");
}

TEST_F(As, WhatTheReaderWouldNotTakeBackIsRefused)
{
    EXPECT_THAT(as_refuse("", "\t\t\t"), StrEq("Pattern cannot have TABs"));
    EXPECT_THAT(as_refuse("a\tb", "a\tb\t\t\t"), StrEq("Pattern cannot have TABs"));
    EXPECT_THAT(as_refuse("#a", "#a\t\t\t"), StrEq("Pattern cannot begin with #"));
    EXPECT_THAT(as_refuse("a", "a\tb\nc\t\t"), StrEq("Association cannot have more than one line"));
    EXPECT_THAT(as_refuse("a", "a\t" + std::string(1021, 'x')), StrEq("Association is too long"));
    EXPECT_EQ(as_refuse("a", "a\t" + std::string(1020, 'x')), nullptr);
    EXPECT_EQ(read("a\t" + std::string(1020, 'x') + "\n"), "");
    EXPECT_EQ(as_refuse("a", "a\tb\t\t"), nullptr);
}

TEST(AsIsempty, OnlyWhiteSpaceIsEmpty)
{
    for (const char *text : {"", " ", " \t\r\n\v\f"})
        EXPECT_TRUE(isempty(text));
    for (const char *text : {"a", " a ", "\x01", "\xC2\xA0"})
        EXPECT_FALSE(isempty(text));
    EXPECT_TRUE(isempty(nullptr));
}

} // namespace
