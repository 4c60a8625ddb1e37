// Name patterns: what they match, that they answer as fnmatch does, and that no pattern takes long.
#include "model/es.h"

#include <clocale>
#include <cstdio>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <random>

using namespace tav;

namespace {

// LC_CTYPE for the life of the object, as the program has it: everything else stays "C".
class Ctype {
public:
    explicit Ctype(const char *locale)
    {
        const char *set = setlocale(LC_CTYPE, locale);
        EXPECT_NE(set, nullptr) << locale;
    }
    ~Ctype() { setlocale(LC_CTYPE, "C"); }
};

struct Case {
    const char *name;
    const char *pattern;
    bool matches;
};

std::ostream &operator<<(std::ostream &out, const Case &one)
{
    return out << one.name << " against " << one.pattern;
}

class EsPatternCase : public testing::TestWithParam<Case> {};

TEST_P(EsPatternCase, Answers)
{
    Ctype ctype("C.UTF-8");
    std::string pattern = GetParam().pattern;
    EXPECT_EQ(es_strcmp(GetParam().name, pattern.c_str()) == 0, GetParam().matches);
    EXPECT_EQ(pattern, GetParam().pattern) << "the pattern is as it was";
}

INSTANTIATE_TEST_SUITE_P(
    Es, EsPatternCase,
    testing::Values(
        Case{"Makefile", "^makefile", true}, Case{"Makefile", "makefile", false},
        Case{"a.h", "*.c|*.h", true}, Case{"a.c", "*.c|*.h", true}, Case{"a.o", "*.c|*.h", false},
        Case{"x", "|x", true}, Case{"", "|x", true}, Case{"x", "|", false}, Case{"", "|", true},
        Case{"", "", true}, Case{"x", "", false}, Case{"", "^", true}, Case{"^", "^", false},
        Case{"x", "^|X", true}, Case{"B.H", "^*.C|*.h", true}, Case{".profile", "*", true},
        Case{"a/b", "a*b", true}, Case{"a/b", "a?b", true}, Case{"a|b", "[a|b]", false},
        Case{"[a", "[a|b]", true}, Case{"b]", "[a|b]", true}, Case{"a\\b", "a\\\\b", true},
        Case{"*", "\\*", true}, Case{"x", "\\*", false}, Case{"\xc3\xa9", "?", true},
        Case{"\xc3\xa9", "??", true}, Case{"\xc3\xa9", "???", false},
        Case{"\xc3\x89T\xc3\x89", "^\xc3\xa9t\xc3\xa9", true}, Case{"\xff", "?", true},
        Case{"a\xff", "^A\xff", true}, Case{"\xff\xfe", "?", false},
        Case{"\xc3\xa9", "[[:alpha:]]", true}, Case{"5", "[[:alpha:]]", false},
        Case{"b", "^[A-C]", true}, Case{"x", "^[[:UPPER:]]", false}, Case{"[abc", "[abc", true},
        Case{"a", "[abc", false}, Case{"a\\", "a\\", false}, Case{"a\nb", "a*b", true}));

// One random small pattern or name of characters that make trouble.
std::string random_text(std::mt19937 &random, const std::vector<std::string> &parts, int most)
{
    std::string text;
    int count = std::uniform_int_distribution<>(0, most)(random);
    for (int i = 0; i < count; i++)
        text += parts[random() % parts.size()];
    return text;
}

void compare_with_fnmatch(const char *locale, const std::vector<std::string> &parts,
                          const std::vector<std::string> &name_parts, unsigned seed)
{
    Ctype ctype(locale);
    std::mt19937 random(seed);
    int matched = 0;
    for (int i = 0; i < 300000; i++) {
        std::string pattern = random_text(random, parts, 9);
        std::string name = random_text(random, name_parts, 5);
        if (pattern.starts_with('^'))
            continue; // means something else to us
        bool expected = fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
        matched += expected;
        ASSERT_EQ(es_strcmp(name.c_str(), pattern.c_str()) == 0, expected)
            << "name '" << name << "' pattern '" << pattern << "' in " << locale;
    }
    EXPECT_GT(matched, 1000) << "the comparison met too few matches to mean anything";
}

const std::vector<std::string> PARTS = {
    "a",  "b",     "c",     "z",         "*",         "?",        "[",  "]",  "!",     "^",
    "-",  "\\",    ":",     "[:alpha:]", "[:digit:]", "[:nope:]", "[.", ".]", "[.a.]", "[=",
    "=]", "[=b=]", "[a-c]", "[!a]",      "[:",        ":]",       ".",  "/",  "=",     "5"};
const std::vector<std::string> NAMES = {"a", "b", "c", "[", "]", "-", "\\", ":",
                                        "a", "b", ".", "5", "!", "^", "="};

TEST(EsPattern, AnswersAsFnmatchInTheByteLocale) { compare_with_fnmatch("C", PARTS, NAMES, 1); }

TEST(EsPattern, AnswersAsFnmatchWithMultibyteCharacters)
{
    std::vector<std::string> parts = PARTS;
    std::vector<std::string> names = NAMES;
    for (const char *more : {"\xc3\xa9", "\xc3\xa0", "\xe4\xb8\xad", "\xd0\xbc",
                             "[\xc3\xa0-\xc3\xbc]", "[a-\xd1\x8f]"}) {
        parts.push_back(more);
        names.push_back(more);
    }
    compare_with_fnmatch("C.UTF-8", parts, names, 2);
}

TEST(EsPattern, AnswersAsFnmatchForBytesThatAreNoText)
{
    std::vector<std::string> parts = PARTS;
    std::vector<std::string> names = NAMES;
    for (const char *more : {"\xff", "\xc3", "\xa9", "[\x80-\xff]", "\xc3\xa9"}) {
        parts.push_back(more);
        names.push_back(more);
    }
    compare_with_fnmatch("C.UTF-8", parts, names, 3);
    compare_with_fnmatch("C", parts, names, 4);
}

TEST(EsPattern, AnswersAsFnmatchWhereARangeEndsOddlyForCharactersWithoutOrder)
{
    Ctype ctype("C.UTF-8");
    for (const char *pattern :
         {"[a-\\\xc8\x96]", "[a-\\z]", "[a-[.z.]", "[a-[.z\xc8\x96.]", "[!a-[.z\xc8\x96.]"})
        for (const char *name : {"\xc8\x96", "\xc3\xa9", "b", "z", "[", "."})
            EXPECT_EQ(es_strcmp(name, pattern) == 0, fnmatch(pattern, name, 0) == 0)
                << "name '" << name << "' pattern '" << pattern << "'";
}

TEST(EsPattern, AMillionStarsAreAnsweredAtOnce)
{
    std::string stars(1000000, '*');
    std::string name(255, 'a');
    EXPECT_EQ(es_strcmp(name.c_str(), stars.c_str()), 0);
    EXPECT_NE(es_strcmp(name.c_str(), (stars + "b").c_str()), 0);
    std::string bars(1000000, '|');
    EXPECT_NE(es_strcmp(name.c_str(), bars.c_str()), 0);
    std::string brackets(1000000, '[');
    EXPECT_NE(es_strcmp(name.c_str(), brackets.c_str()), 0);
    EXPECT_NE(es_strcmp(name.c_str(), (brackets + "]").c_str()), 0);
}

TEST(EsPattern, ManyStarsWithoutAMatchTakeNoExponentialTime)
{
    std::string pattern;
    for (int i = 0; i < 120; i++)
        pattern += "*a";
    pattern += "*[b]";
    std::string name(255, 'a');
    EXPECT_NE(es_strcmp(name.c_str(), pattern.c_str()), 0);
    EXPECT_NE(es_strcmp(name.c_str(), ("^" + pattern).c_str()), 0);
}

TEST(EsPattern, APreparedPatternServesManyNames)
{
    EsPattern pattern = es_pattern_prepare("^*.C|README*");
    EXPECT_TRUE(pattern.fold);
    EXPECT_TRUE(es_pattern_matches(pattern, "a.c"));
    EXPECT_TRUE(es_pattern_matches(pattern, "readme.md"));
    EXPECT_FALSE(es_pattern_matches(pattern, "a.h"));
}

TEST(EsPattern, ANullNameOrPatternIsAnEmptyOne)
{
    EXPECT_EQ(es_strcmp(nullptr, ""), 0);
    EXPECT_EQ(es_strcmp("", nullptr), 0);
    EXPECT_NE(es_strcmp("a", nullptr), 0);
}

} // namespace
