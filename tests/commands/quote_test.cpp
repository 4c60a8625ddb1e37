// The bytes of command lines, step by step. "^" stands for the mark in the texts here.
#include "commands/quote.h"

#include <algorithm>
#include <gmock/gmock.h>

using namespace tav;
using namespace std::string_literals;
using testing::ElementsAre;

namespace {

std::string x_marked(std::string text)
{
    std::replace(text.begin(), text.end(), '^', QUOTE_MARK);
    return text;
}

TEST(Quote, OrdinaryNamesAreLettersDigitsAndAFewSigns)
{
    for (const char *name : {"", "a", "my file.c", "._-+=:,%/~^",
                             "Gr\xC3\xB6\xC3\x9F"
                             "e",
                             "\xF0\x9F\x98\x80"})
        EXPECT_TRUE(quote_is_plain(name)) << name;
    for (const char *name : {"-a",
                             "a'b",
                             "a\"b",
                             "$a",
                             "a`",
                             "a;",
                             "a&",
                             "a|",
                             "a<",
                             "a>",
                             "(a",
                             "a)",
                             "a*",
                             "a?",
                             "[a",
                             "a]",
                             "{a",
                             "a}",
                             "#a",
                             "a!",
                             "a\\",
                             "a@",
                             "a\tb",
                             "a\nb",
                             "\x7F",
                             "\xFF",
                             "\xC3",
                             "\xC0\x80",
                             "\xE0\x80\x80",
                             "\xED\xA0\x80",
                             "\xF5\x80\x80\x80"})
        EXPECT_FALSE(quote_is_plain(name)) << name;
    EXPECT_TRUE(quote_is_plain_word("/home/a"));
    EXPECT_FALSE(quote_is_plain_word("/home/a b"));
    EXPECT_FALSE(quote_is_plain_word("~"));
}

TEST(Quote, ATemplateIsWrappedForTheShell)
{
    EXPECT_EQ(quote_wrap("ped"), "sh -c \"exec ped @\"");
    EXPECT_EQ(quote_wrap("pterm -z make -f @"), "sh -c \"exec pterm -z make -f @\"");
    EXPECT_EQ(quote_wrap("lp -dtext"), "sh -c \"exec lp -dtext @\"");
}

TEST(Quote, ATemplateWithoutBlanksButWithAPlaceholderIsUsedAsItIs)
{
    EXPECT_EQ(quote_wrap("show@"), "show@");
    EXPECT_EQ(quote_wrap("ped\t@"), "ped\t@");
}

TEST(Quote, QuotesOfTheTemplateDoNotEndTheWrapper)
{
    EXPECT_EQ(quote_wrap("ped \"@\""), x_marked("sh -c \"exec ped ^@^\""));
    EXPECT_EQ(quote_wrap("ped \\\"@\\\""), "sh -c \"exec ped \\\"@\\\"\"");
}

TEST(Quote, MarksStandAroundAPlaceholderButNotBesideASingleQuote)
{
    EXPECT_EQ(quote_mark("ped @", true), x_marked("ped ^@^"));
    EXPECT_EQ(quote_mark("@", true), x_marked("^@^"));
    EXPECT_EQ(quote_mark("ped '@'", true), "ped '@'");
    EXPECT_EQ(quote_mark("ped 'a@'", true), x_marked("ped 'a^@'"));
    EXPECT_EQ(quote_mark("ped '@a'", true), x_marked("ped '@^a'"));
    EXPECT_EQ(quote_mark("cmp @ @", true), x_marked("cmp ^@^ ^@^"));
}

TEST(Quote, EveryPlaceholderIsReplaced)
{
    std::string out;
    EXPECT_TRUE(quote_fill(out, quote_mark("sh -c \"exec cmp @ @\"", false), {"a b"}, '@'));
    EXPECT_EQ(out, x_marked("sh -c \"exec cmp ^a b^ ^a b^\""));
}

TEST(Quote, SpecialCharactersAreEscapedWhereTheyStand)
{
    std::string out;
    EXPECT_TRUE(quote_fill(out, x_marked("sh -c \"exec ped ^@^\""), {"a$b`c\\d e"}, '@'));
    EXPECT_EQ(out, x_marked("sh -c \"exec ped ^a\\$b\\`c\\\\d e^\""));
    EXPECT_TRUE(quote_fill(out, "sh -c \"exec ped '@'\"", {"a'b$c"}, '@'));
    EXPECT_EQ(out, "sh -c \"exec ped 'a'\\''b$c'\"");
    EXPECT_TRUE(quote_fill(out, "ped\t@", {"a b"}, '@'));
    EXPECT_EQ(quote_split(out, 9), (std::vector<std::string>{"ped", "a b"}));
}

TEST(Quote, TheShownDirectoryIsQuotedWhereTheShellWouldSplitIt)
{
    EXPECT_EQ(quote_pwd("sh -c \"exec a $PWD/b\""), x_marked("sh -c \"exec a ^$PWD^/b\""));
    EXPECT_EQ(quote_pwd("sh -c \"exec a ${PWD}/b\""), x_marked("sh -c \"exec a ^$PWD^/b\""));
    EXPECT_EQ(quote_pwd(x_marked("sh -c \"exec a ^$PWD^\"")), x_marked("sh -c \"exec a ^$PWD^\""));
    EXPECT_EQ(quote_pwd("sh -c \"exec a '$PWD' $PWDX \\$PWD\""),
              "sh -c \"exec a '$PWD' $PWDX \\$PWD\"");
    EXPECT_EQ(quote_pwd("a\t$PWD"), "a\t$PWD"); // no shell reads it
}

TEST(Quote, ALineIsSplitAtBlanksAndTabs)
{
    EXPECT_THAT(quote_split("  a\t b  c ", 20), ElementsAre("a", "b", "c"));
    EXPECT_THAT(quote_split("", 20), ElementsAre());
    EXPECT_THAT(quote_split(" \t ", 20), ElementsAre());
}

TEST(Quote, AQuotedArgumentRunsToTheNextQuoteWithoutABackslash)
{
    EXPECT_THAT(quote_split("sh -c \"exec ped x\"", 20), ElementsAre("sh", "-c", "exec ped x"));
    EXPECT_THAT(quote_split("a \"b\\\"c\" d", 20), ElementsAre("a", "b\\\"c", "d"));
    EXPECT_THAT(quote_split("a \"\" d", 20), ElementsAre("a", "", "d"));
    EXPECT_THAT(quote_split("a b\"c d\"", 20), ElementsAre("a", "b\"c", "d\""));
    EXPECT_THAT(quote_split("\"a\"b", 20), ElementsAre("a", "b"));
    EXPECT_THAT(quote_split("a \"b c", 20), ElementsAre("a", "b c"));
}

TEST(Quote, MarksBecomeQuotesOnlyAfterTheSplitting)
{
    EXPECT_THAT(quote_split(x_marked("sh -c \"exec ped ^my file.c^\""), 20),
                ElementsAre("sh", "-c", "exec ped \"my file.c\""));
}

TEST(Quote, ALiteralIsNoSeparatorNoQuoteAndNoMark)
{
    EXPECT_THAT(quote_split("a b\0 c\0\"\0\xFF"s + "\0\\"
                                                   "d"s,
                            20),
                ElementsAre("a", "b c\"\xFF\\d"));
    EXPECT_EQ(quote_find("a\0@b@"s, '@'), 4u);
    EXPECT_EQ(quote_find("a\0@b"s, '@'), std::string::npos);
}

TEST(Quote, TwentyArgumentsAreTheLimit)
{
    std::string line;
    for (int i = 0; i < 21; i++)
        line += "a" + std::to_string(i) + " ";
    const std::vector<std::string> arguments = quote_split(line, 20);
    ASSERT_EQ(arguments.size(), 20u);
    EXPECT_EQ(arguments.back(), "a19");
}

TEST(Quote, AWordIsQuotedOnlyWhenItHasTo)
{
    EXPECT_EQ(quote_word("a.c"), "a.c");
    EXPECT_EQ(quote_word("my file"), "'my file'");
    EXPECT_EQ(quote_word("~"), "'~'");
    EXPECT_EQ(quote_word("a'b"), "'a'\\''b'");
    EXPECT_EQ(quote_word(""), "''");
}

} // namespace
