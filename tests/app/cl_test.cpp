// Input histories: the ring, their files, what a combo box shows, completion.
#include "app/cl.h"

#include "testdir.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

class Cl : public testing::Test {
protected:
    ~Cl() override { cl_destroy(m_list); }

    // The entries from the most recent on, each followed by a comma.
    static std::string text_of(const ClHistory *list)
    {
        std::string all;
        for (int n = 1; cl_get(list, n); n++)
            all += std::string(cl_get(list, n)) + ",";
        return all;
    }
    std::string text() const { return text_of(m_list); }
    void add(std::initializer_list<const char *> texts)
    {
        for (const char *each : texts)
            cl_add(m_list, each);
    }
    void read(std::string_view content)
    {
        m_dir.text("h", content);
        cl_destroy(m_list);
        m_list = cl_read(m_dir.path().c_str(), "h");
    }

    TestDir m_dir;
    ClHistory *m_list = cl_read(nullptr, nullptr);
};

TEST_F(Cl, TheNewestStandsFirst)
{
    add({"a", "b", "c"});
    EXPECT_EQ(text(), "c,b,a,");
    EXPECT_STREQ(cl_get(m_list, 1), "c");
    EXPECT_STREQ(cl_get(m_list, 3), "a");
    EXPECT_EQ(cl_get(m_list, 0), nullptr);
    EXPECT_EQ(cl_get(m_list, 4), nullptr);
    EXPECT_EQ(cl_get(m_list, -1), nullptr);
}

TEST_F(Cl, TheTwentyFirstDropsTheOldest)
{
    for (int i = 0; i < 21; i++)
        cl_add(m_list, std::to_string(i).c_str());
    EXPECT_EQ(m_list->count, 20);
    EXPECT_STREQ(cl_get(m_list, 1), "20");
    EXPECT_STREQ(cl_get(m_list, 20), "1");
}

TEST_F(Cl, AnExistingEntryMovesToTheFrontAndTheOthersKeepTheirOrder)
{
    for (int i = 0; i < 30; i++)
        cl_add(m_list, std::to_string(i).c_str());
    m_list->flags = 0;
    cl_add(m_list, "15");
    EXPECT_EQ(m_list->count, 20);
    EXPECT_EQ(text(), "15,29,28,27,26,25,24,23,22,21,20,19,18,17,16,14,13,12,11,10,");
    EXPECT_EQ(m_list->flags, CL_CHANGED);
    cl_add(m_list, "10");
    EXPECT_EQ(text(), "10,15,29,28,27,26,25,24,23,22,21,20,19,18,17,16,14,13,12,11,");
}

TEST_F(Cl, AddingTheFrontEntryAgainLeavesTheChangedBit)
{
    add({"a", "b"});
    m_list->flags = 0;
    cl_add(m_list, "b");
    EXPECT_EQ(m_list->flags, 0u);
    EXPECT_EQ(text(), "b,a,");
    m_list->flags = CL_CHANGED;
    cl_add(m_list, "b");
    EXPECT_EQ(m_list->flags, CL_CHANGED);
}

TEST_F(Cl, ComparingIsExact)
{
    add({"a", "A", "a "});
    EXPECT_EQ(text(), "a ,A,a,");
}

TEST_F(Cl, AnEntryOfTheListMayBeAddedToIt)
{
    for (int i = 0; i < 20; i++)
        cl_add(m_list, std::to_string(i).c_str());
    cl_add(m_list, cl_get(m_list, 20));
    EXPECT_STREQ(cl_get(m_list, 1), "0");
    cl_add(m_list, nullptr);
    EXPECT_EQ(m_list->count, 20);
}

TEST_F(Cl, AMissingFileGivesAnEmptyListThatIsToBeShown)
{
    EXPECT_EQ(m_list->count, 0);
    EXPECT_EQ(m_list->flags, CL_CHANGED);
    ClHistory *list = cl_read(m_dir.path().c_str(), "missing");
    EXPECT_EQ(list->count, 0);
    cl_destroy(list);
}

TEST_F(Cl, TheFirstLineIsTheMostRecent)
{
    read("one\ntwo\n\nfour\n");
    EXPECT_EQ(text(), "one,two,,four,");
    EXPECT_EQ(m_list->head, 0);
    EXPECT_EQ(m_list->flags, CL_CHANGED);
}

TEST_F(Cl, TheLastLineNeedsNoNewline)
{
    read("one\ntwo");
    EXPECT_EQ(text(), "one,two,");
}

TEST_F(Cl, AtMostTwentyLinesAreRead)
{
    std::string lines;
    for (int i = 0; i < 50; i++)
        lines += std::to_string(i) + "\n";
    read(lines);
    EXPECT_EQ(m_list->count, 20);
    EXPECT_STREQ(cl_get(m_list, 20), "19");
}

TEST_F(Cl, ALongLineIsTakenInPiecesOf1022)
{
    read(std::string(1022, 'a') + std::string(1022, 'b') + "c\nnext\n");
    EXPECT_EQ(text(), std::string(1022, 'a') + "," + std::string(1022, 'b') + ",c,next,");
}

TEST_F(Cl, ALineOf1022CharactersIsOneEntry)
{
    read(std::string(1022, 'a') + "\nnext\n");
    EXPECT_EQ(text(), std::string(1022, 'a') + ",next,");
}

TEST_F(Cl, ALineOfTenMegabytesFillsTheListAndNoMore)
{
    read(std::string(10000000, 'x') + "\nlast\n");
    EXPECT_EQ(m_list->count, 20);
    EXPECT_EQ(std::string(cl_get(m_list, 20)), std::string(1022, 'x'));
}

TEST_F(Cl, WhatFollowsANulIsDropped)
{
    using namespace std::string_literals;
    read("ab\0cd\n\0\nxy\n"s);
    EXPECT_EQ(text(), "ab,,xy,");
}

TEST_F(Cl, SavingAndReadingAgainGivesTheSame)
{
    for (int i = 0; i < 25; i++)
        cl_add(m_list, ("entry " + std::to_string(i) + " \xff").c_str());
    cl_save(m_list, m_dir.path().c_str(), "h");
    ClHistory *again = cl_read(m_dir.path().c_str(), "h");
    EXPECT_EQ(text_of(again), text());
    cl_destroy(again);
    EXPECT_EQ(m_dir.names(), std::vector<std::string>{"h"}) << "nothing else is left there";
}

TEST_F(Cl, ADirectoryMayEndInASlash)
{
    cl_add(m_list, "a");
    cl_save(m_list, (m_dir.path() + "/").c_str(), "h");
    EXPECT_EQ(m_dir.read("h"), "a\n");
}

TEST_F(Cl, ATextHoldingANewlineIsNotSaved)
{
    add({"a", "b\nc", "d"});
    cl_save(m_list, m_dir.path().c_str(), "h");
    EXPECT_EQ(m_dir.read("h"), "d\na\n");
    EXPECT_EQ(m_list->count, 3);
}

TEST_F(Cl, SavingNowhereSaysNothing)
{
    cl_add(m_list, "a");
    ASSERT_EQ(chdir(m_dir.path().c_str()), 0);
    cl_save(m_list, m_dir.at("missing").c_str(), "h");
    cl_save(m_list, nullptr, "h");
    cl_save(m_list, m_dir.path().c_str(), nullptr);
    EXPECT_TRUE(m_dir.names().empty());
}

// A combo box that only remembers.
struct Box {
    std::vector<std::string> items;
    int selected = 0;
    int cleared = 0;
};
ClBox box_of(Box &box)
{
    return {&box,
            [](void *widget) {
                static_cast<Box *>(widget)->items.clear();
                static_cast<Box *>(widget)->cleared++;
            },
            [](void *widget, const std::string *texts, int count, int position) {
                auto &items = static_cast<Box *>(widget)->items;
                auto at = position == 0 ? items.end() : items.begin() + position - 1;
                items.insert(at, texts, texts + count);
            },
            [](void *widget) { return static_cast<int>(static_cast<Box *>(widget)->items.size()); },
            [](void *widget, int position) { static_cast<Box *>(widget)->selected = position; }};
}

TEST_F(Cl, AComboBoxShowsTheMostRecentFirstRoundTheRing)
{
    for (int i = 0; i < 27; i++)
        cl_add(m_list, std::to_string(i).c_str());
    Box box;
    box.items = {"old"};
    EXPECT_EQ(cl_apply(m_list, box_of(box)), 1);
    ASSERT_EQ(box.items.size(), 20u);
    for (int i = 0; i < 20; i++)
        EXPECT_EQ(box.items[static_cast<size_t>(i)], std::to_string(26 - i));
    EXPECT_EQ(m_list->flags, 0u);
    EXPECT_EQ(cl_apply(m_list, box_of(box)), 0);
    EXPECT_EQ(box.cleared, 1);
}

TEST_F(Cl, AnEmptyHistoryEmptiesTheBoxAndStaysChanged)
{
    Box box;
    box.items = {"old"};
    EXPECT_EQ(cl_apply(m_list, box_of(box)), 1);
    EXPECT_TRUE(box.items.empty());
    EXPECT_EQ(m_list->flags, CL_CHANGED);
}

TEST_F(Cl, SelectingIsStrictlyBelowTheCount)
{
    Box box;
    box.items = {"only"};
    cl_text_select(box_of(box), 1);
    EXPECT_EQ(box.selected, 0) << "a single item gets no selection";
    box.items = {"one", "two"};
    cl_text_select(box_of(box), 2);
    EXPECT_EQ(box.selected, 0);
    cl_text_select(box_of(box), 0);
    EXPECT_EQ(box.selected, 0);
    cl_text_select(box_of(box), 1);
    EXPECT_EQ(box.selected, 1);
}

TEST_F(Cl, WebPrefixesAreThese)
{
    EXPECT_EQ(cl_is_web_address(nullptr), nullptr);
    EXPECT_STREQ(cl_is_web_address("http://host"), "host");
    EXPECT_STREQ(cl_is_web_address("ftp://"), "");
    EXPECT_STREQ(cl_is_web_address("gopher://x"), "x");
    EXPECT_STREQ(cl_is_web_address("file:///etc"), "/etc");
    EXPECT_EQ(cl_is_web_address("HTTP://host"), nullptr);
    EXPECT_EQ(cl_is_web_address("https://host"), nullptr);
    EXPECT_EQ(cl_is_web_address("/usr"), nullptr);
    EXPECT_EQ(cl_is_web_address(""), nullptr);
}

TEST_F(Cl, CompletionIgnoresPrefixesOnBothSides)
{
    add({"host/xyz"});
    EXPECT_STREQ(cl_find_pattern(m_list, "http://host/x"), "host/xyz");
    EXPECT_STREQ(cl_find_pattern(m_list, "ftp://host/x"), "host/xyz");
    add({"gopher://hole/abc"});
    EXPECT_STREQ(cl_find_pattern(m_list, "hole"), "hole/abc");
    EXPECT_EQ(cl_find_pattern(m_list, "host/xyz1"), nullptr);
    EXPECT_EQ(cl_find_pattern(m_list, "gone"), nullptr);
}

TEST_F(Cl, CompletionTakesTheMostRecentAndAnEmptyTextTakesItToo)
{
    EXPECT_EQ(cl_find_pattern(m_list, ""), nullptr);
    add({"/usr/bin", "/usr/lib"});
    EXPECT_STREQ(cl_find_pattern(m_list, "/usr"), "/usr/lib");
    EXPECT_STREQ(cl_find_pattern(m_list, "/usr/b"), "/usr/bin");
    EXPECT_STREQ(cl_find_pattern(m_list, ""), "/usr/lib");
}

class Boxes : public testing::Test {
protected:
    ~Boxes() override { init_destroy_cboxs(); }
    TestDir m_dir;
};

TEST_F(Boxes, FiveAreReadFromTheirFiles)
{
    m_dir.text("goto.001", "/usr\n");
    m_dir.text("fspec.001", "*.c\n*.h\n");
    m_dir.text("with.001", "w\n");
    m_dir.text("copy.001", "c\n");
    m_dir.text("pattern.001", "p\n");
    init_read_cboxs(m_dir.path().c_str());
    EXPECT_STREQ(cl_get(gPathList, 1), "/usr");
    EXPECT_STREQ(cl_get(gSpecList, 2), "*.h");
    EXPECT_STREQ(cl_get(gWithList, 1), "w");
    EXPECT_STREQ(cl_get(gCopyList, 1), "c");
    EXPECT_STREQ(cl_get(gPatternList, 1), "p");
}

TEST_F(Boxes, AnEmptyFilterHistoryHoldsTheStar)
{
    m_dir.text("fspec.001", "");
    init_read_cboxs(m_dir.path().c_str());
    EXPECT_STREQ(cl_get(gSpecList, 1), "*");
    EXPECT_EQ(gSpecList->count, 1);
    EXPECT_EQ(gPathList->count, 0);
}

TEST_F(Boxes, OnlyThreeAreWritten)
{
    init_read_cboxs(m_dir.path().c_str());
    for (ClHistory *list : {gPathList, gSpecList, gWithList, gCopyList, gPatternList})
        cl_add(list, "new");
    init_save_cboxs(m_dir.path().c_str());
    EXPECT_EQ(m_dir.names(), (std::vector<std::string>{"fspec.001", "goto.001", "pattern.001"}));
    EXPECT_EQ(m_dir.read("fspec.001"), "new\n*\n");
}

TEST_F(Boxes, WithoutADirectoryNothingIsReadOrWritten)
{
    m_dir.text("goto.001", "/usr\n");
    ASSERT_EQ(chdir(m_dir.path().c_str()), 0);
    init_read_cboxs(nullptr);
    EXPECT_EQ(gPathList->count, 0);
    EXPECT_STREQ(cl_get(gSpecList, 1), "*");
    cl_add(gPathList, "new");
    init_save_cboxs(nullptr);
    EXPECT_EQ(m_dir.names(), std::vector<std::string>{"goto.001"});
    EXPECT_EQ(m_dir.read("goto.001"), "/usr\n");
}

TEST_F(Boxes, DestroyingMayBeRepeated)
{
    init_read_cboxs(nullptr);
    init_destroy_cboxs();
    EXPECT_EQ(gPathList, nullptr);
    init_destroy_cboxs();
    init_save_cboxs(m_dir.path().c_str());
    EXPECT_TRUE(m_dir.names().empty());
}

} // namespace
