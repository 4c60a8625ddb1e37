// URI lists from and to other programs.
#include "commands/uri.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

using namespace tav;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::StrEq;

namespace {

// "DIRECTORY: NAME NAME; DIRECTORY: ..." of what was parsed, "refused" when nothing was.
std::string x_parsed(std::string_view text)
{
    UriFiles files;
    if (uri_parse_list(text, files) != 0)
        return "refused";
    std::string out;
    for (const FileListRecord &group : files.groups) {
        out += out.empty() ? "" : "; ";
        out += group.directory + ":"s;
        for (const char *name : group.names)
            out += " "s + name;
    }
    return out;
}

std::string x_path(std::string_view uri)
{
    std::string path;
    return uri_to_path(uri, path) == 0 ? path : "refused";
}

std::string x_own_host()
{
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

} // namespace

TEST(Uri, EncodingIsMadeFromBytes)
{
    EXPECT_EQ(uri_from_path("/a b/\xff%\n&;'\"#?\xc3\xa4~_-."),
              "file:///a%20b/%FF%25%0A%26%3B%27%22%23%3F%C3%A4~_-.");
}

TEST(Uri, EveryByteOfANameComesBack)
{
    std::string name;
    for (int c = 1; c < 256; c++)
        if (c != '/')
            name.push_back(static_cast<char>(c));
    EXPECT_EQ(x_path(uri_from_path("/d/" + name)), "/d/" + name);
}

TEST(Uri, LocalFormsAreAllTaken)
{
    EXPECT_EQ(x_path("file:/p"), "/p");
    EXPECT_EQ(x_path("file:///p"), "/p");
    EXPECT_EQ(x_path("file://localhost/p"), "/p");
    EXPECT_EQ(x_path("FILE://LocalHost/p"), "/p");
    EXPECT_EQ(x_path("file://" + x_own_host() + "/p"), "/p");
    EXPECT_EQ(x_path("file:////p//q/"), "/p/q");
}

TEST(Uri, OthersAreRefused)
{
    for (const char *uri :
         {"http://localhost/p", "file://elsewhere.example/p", "file:p", "p", "/p", "",
          "file:", "file://", "file://localhost", "smb://h/p", "file:///a%00b", "file:///a%2Fb",
          "file:///a%2", "file:///a%", "file:///a%zz", "file:///a?b", "file:///a#b", "trash:///p"})
        EXPECT_EQ(x_path(uri), "refused") << uri;
}

TEST(Uri, ListIsGroupedByDirectory)
{
    EXPECT_EQ(x_parsed("file:///a/1\r\nfile:///b/2\r\nfile:///a/3\r\n"), "/a: 1 3; /b: 2");
    EXPECT_EQ(x_parsed("file:///1\r\n"), "/: 1");
}

TEST(Uri, ListTakesCommentsEmptyLinesAndBareLineFeeds)
{
    EXPECT_EQ(x_parsed("# a comment\r\n\r\nfile:///a/1\nfile:///a/2"), "/a: 1 2");
    EXPECT_EQ(x_parsed("file:///a/1\r\n\0"s), "/a: 1");
}

TEST(Uri, ListWithNothingLocalIsRefused)
{
    EXPECT_EQ(x_parsed(""), "refused");
    EXPECT_EQ(x_parsed("\r\n\r\n"), "refused");
    EXPECT_EQ(x_parsed("http://a/b\r\n"), "refused");
    EXPECT_EQ(x_parsed("file:///\r\n"), "refused");
    EXPECT_EQ(x_parsed("file:///a/..\r\nfile:///.\r\n"), "refused");
}

TEST(Uri, RefusedLinesAreCountedAndTheRestIsTaken)
{
    UriFiles files;
    ASSERT_EQ(uri_parse_list("http://a/b\r\nfile:///a/1\r\nfile:///a/%00\r\n../x\r\n", files), 0);
    EXPECT_EQ(files.refused, 3u);
    ASSERT_EQ(files.groups.size(), 1u);
    EXPECT_EQ(files.groups[0].count, 1);
}

TEST(Uri, AFileNamedTwiceCountsOnce)
{
    EXPECT_EQ(x_parsed("file:///a/1\r\nfile:///a/1\r\nfile:///a/1/\r\n"), "/a: 1");
}

TEST(Uri, ListIsWrittenWithCarriageReturns)
{
    EXPECT_EQ(uri_make_list(transf_make("/a b", {"1", "\xff"})),
              "file:///a%20b/1\r\nfile:///a%20b/%FF\r\n");
    EXPECT_EQ(uri_make_list(transf_make("/", {"x"})), "file:///x\r\n");
}

TEST(Uri, GnomeFormHasNoLineEndAtItsEnd)
{
    FileListRecord list = transf_make("/d", {"1", "2"});
    EXPECT_EQ(uri_make_gnome(list, true), "cut\nfile:///d/1\nfile:///d/2");
    EXPECT_EQ(uri_make_gnome(list, false), "copy\nfile:///d/1\nfile:///d/2");
}

TEST(Uri, GnomeFormIsRead)
{
    bool cut = false;
    UriFiles files;
    ASSERT_EQ(uri_parse_gnome("cut\nfile:///d/1\nfile:///d/2", cut, files), 0);
    EXPECT_TRUE(cut);
    EXPECT_THAT(files.groups[0].names, ElementsAre(StrEq("1"), StrEq("2")));
    ASSERT_EQ(uri_parse_gnome("copy\r\nfile:///d/1\r\n\0"s, cut, files), 0);
    EXPECT_FALSE(cut);
    for (const char *text :
         {"", "cut", "cut\n", "link\nfile:///d/1", "file:///d/1", "cut file:///d/1"})
        EXPECT_EQ(uri_parse_gnome(text, cut, files), -1) << text;
}

TEST(Uri, KdeMarkIsOneForCut)
{
    EXPECT_EQ(uri_make_kde_mark(true), "1");
    EXPECT_EQ(uri_make_kde_mark(false), "0");
    EXPECT_TRUE(uri_parse_kde_mark("1"));
    EXPECT_FALSE(uri_parse_kde_mark("0"));
    EXPECT_FALSE(uri_parse_kde_mark(""));
}

TEST(Uri, PlainTextIsThePathsAsTheyAre)
{
    EXPECT_EQ(uri_make_plain(transf_make("/d", {"a b", "\xff"})), "/d/a b\n/d/\xff");
}

TEST(Uri, NamesThatAreGoneAreLeftOutEverywhere)
{
    FileListRecord list = transf_make("/d", {"1", "2"});
    list.names[0] = "";
    EXPECT_EQ(uri_make_list(list), "file:///d/2\r\n");
    EXPECT_EQ(uri_make_gnome(list, false), "copy\nfile:///d/2");
    EXPECT_EQ(uri_make_plain(list), "/d/2");
}

TEST(Uri, DirectoryWithDotsLeavesSimplified)
{
    std::string base = testing::TempDir() + "uri_test." + std::to_string(getpid());
    std::filesystem::create_directories(base + "/real/deep");
    std::filesystem::create_directory_symlink(base + "/real/deep", base + "/link");
    std::string real = std::filesystem::canonical(base + "/real").string();
    EXPECT_EQ(uri_make_plain(transf_make(base + "/link/..", {"f"})), real + "/f");
    std::filesystem::remove_all(base);
}

TEST(Uri, HugeTextsAreRefused)
{
    std::string text;
    while (text.size() <= URI_MAX_BYTES)
        text +=
            "file:///" + std::to_string(text.size()) + "/name/of/a/file/that/is/rather/long\r\n";
    EXPECT_EQ(x_parsed(text), "refused");
    std::string many;
    for (size_t i = 0; i <= URI_MAX_COUNT; i++)
        many += "file:/" + std::to_string(i) + "\n";
    ASSERT_LT(many.size(), URI_MAX_BYTES);
    EXPECT_EQ(x_parsed(many), "refused");
}

TEST(Uri, AVeryLongLineIsRefused)
{
    EXPECT_EQ(x_path("file:///" + std::string(4 * URI_MAX_PATH, 'a')), "refused");
}
