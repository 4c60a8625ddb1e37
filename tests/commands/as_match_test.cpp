// A prepared pattern answers as the pattern itself does.
#include "commands/as_match.h"

#include "model/es.h"

#include <clocale>
#include <gtest/gtest.h>
#include <random>

using namespace tav;

namespace {

TEST(AsMatch, EndingsAndPlainNames)
{
    EXPECT_TRUE(as_match(as_match_make("*.txt"), "a.txt"));
    EXPECT_TRUE(as_match(as_match_make("*.txt"), ".txt"));
    EXPECT_FALSE(as_match(as_match_make("*.txt"), "txt"));
    EXPECT_FALSE(as_match(as_match_make("*.txt"), "a.TXT"));
    EXPECT_TRUE(as_match(as_match_make("^*.txt"), "a.TXT"));
    EXPECT_TRUE(as_match(as_match_make("README|*.txt"), "README"));
    EXPECT_FALSE(as_match(as_match_make("README|*.txt"), "XREADME"));
    EXPECT_TRUE(as_match(as_match_make("|x"), ""));
    EXPECT_TRUE(as_match(as_match_make("*"), "anything"));
    EXPECT_TRUE(as_match(as_match_make("*.[ch]"), "a.h"));
}

TEST(AsMatch, AnswersAsThePatternItself)
{
    ASSERT_TRUE(setlocale(LC_CTYPE, "C.UTF-8"));
    const char *parts[] = {
        "*", "?",   "[ab]",     "[!a]",     "[",    "]",  "\\",           "a", "B", ".", "|",
        "^", "txt", "\xC3\xA4", "\xC3\x84", "\xFF", "*.", "\xE2\x84\xAA", "k", "K", ""};
    std::mt19937 random(7);
    std::uniform_int_distribution<size_t> part(0, std::size(parts) - 1);
    std::uniform_int_distribution<int> length(0, 5);
    const auto text = [&] {
        std::string out;
        for (int left = length(random); left > 0; left--)
            out += parts[part(random)];
        return out;
    };
    for (int i = 0; i < 200'000; i++) {
        const std::string pattern = text(), name = text();
        ASSERT_EQ(as_match(as_match_make(pattern), name.c_str()),
                  es_strcmp(name.c_str(), pattern.c_str()) == 0)
            << "\"" << name << "\" against \"" << pattern << "\"";
    }
    setlocale(LC_CTYPE, "C");
}

} // namespace
