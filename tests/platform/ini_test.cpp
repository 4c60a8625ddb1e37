// Plain ini texts.
#include "platform/ini.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

TEST(Ini, GivesTheValueOfAKeyInItsSection)
{
    const char *text = "a=0\n[one]\na=1\n[two]\n  a = 2 3 \r\na=4\n";
    EXPECT_EQ(ini_get(text, "one", "a"), "1");
    EXPECT_EQ(ini_get(text, "two", "a"), "2 3");
    EXPECT_EQ(ini_get(text, "two", "b"), std::nullopt);
    EXPECT_EQ(ini_get(text, "three", "a"), std::nullopt);
    EXPECT_EQ(ini_get("", "one", "a"), std::nullopt);
}

TEST(Ini, MakesSectionAndKey)
{
    std::string text;
    ini_set(text, "one", "a", "1");
    ini_set(text, "two", "b", "2");
    ini_set(text, "one", "c", "3");
    EXPECT_EQ(text, "[one]\na=1\nc=3\n\n[two]\nb=2\n");
}

TEST(Ini, ReplacesInPlaceAndKeepsEverythingElse)
{
    std::string text = "# note\n[one]\n a = 1\nother line\n\n[x]\na=9";
    ini_set(text, "one", "a", "2");
    EXPECT_EQ(text, "# note\n[one]\na=2\nother line\n\n[x]\na=9");
    ini_set(text, "x", "b", "0");
    EXPECT_EQ(text, "# note\n[one]\na=2\nother line\n\n[x]\na=9\nb=0\n");
}

} // namespace
