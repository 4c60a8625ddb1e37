// Every sort key, both directions, directories first, ties, and comparisons that contradict
// themselves.
#include "model/listing.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <random>

using namespace tav;

namespace {

constexpr DirCompare KEYS[] = {dir_cmp_name,  dir_cmp_size,        dir_cmp_date, dir_cmp_user,
                               dir_cmp_group, dir_cmp_permissions, dir_cmp_link};

class DirSort : public testing::Test {
protected:
    void SetUp() override
    {
        // Names run against the ids: who sorts by id is found out.
        gDirIds.user = [](uid_t id) -> const char * {
            sAsked++;
            return id == 1 ? "zoe" : id == 2 ? "amy" : id == 3 ? "amy" : nullptr;
        };
        gDirIds.group = [](gid_t id) -> const char * {
            return id == 1 ? "wheel" : id == 2 ? "adm" : nullptr;
        };
        dir_forget_names();
        sAsked = 0;
    }
    void TearDown() override
    {
        gDirIds = m_old;
        dir_forget_names();
    }
    static int sAsked;
    TestConfig m_config;
    TestListing m_list;
    DirIdSource m_old = gDirIds;
};
int DirSort::sAsked = 0;

TEST_F(DirSort, AnEmptyListingOrNoComparisonLeavesItAlone)
{
    for (DirCompare key : KEYS)
        EXPECT_EQ(m_list.sorted(key), "");
    m_list.add("b");
    m_list.add("a");
    EXPECT_EQ(m_list.sorted(nullptr), "b a ");
}

TEST_F(DirSort, NumbersByValueOthersByBytes)
{
    for (const char *name : {"10", "9", "b", "A"})
        m_list.add(name);
    EXPECT_EQ(m_list.sorted(dir_cmp_name, 1), "9 10 A b ");
    EXPECT_EQ(m_list.sorted(dir_cmp_name, 0), "b A 10 9 ");
}

TEST_F(DirSort, NamesWithDigitsAmongOthersGoByBytes)
{
    for (const char *name : {"a9", "a10", "Z", "\xc3\xa9", "a", "-", "aa"})
        m_list.add(name);
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "- Z a a10 a9 aa \xc3\xa9 ");
}

TEST_F(DirSort, EqualNumbersTieButAlwaysComeOutTheSame)
{
    DirEntry &a = m_list.add("7");
    DirEntry &b = m_list.add("007");
    EXPECT_EQ(dir_cmp_name(a, b), 0);
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "007 7 ");
    std::swap(m_list.listing.entries[0], m_list.listing.entries[1]);
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "007 7 ");
}

TEST_F(DirSort, TheNameComparisonIsAsDescribed)
{
    auto cmp = [this](const char *a, const char *b) {
        DirEntry left = m_list.add(a);
        DirEntry right = m_list.add(b);
        return dir_cmp_name(left, right);
    };
    EXPECT_EQ(cmp("10", "9"), 1);
    EXPECT_EQ(cmp("3", "2000000000"), 3 - 2000000000);
    EXPECT_LT(cmp("a10", "a9"), 0);
    EXPECT_LT(cmp("10", "1a"), 0);
    EXPECT_EQ(cmp("", "0"), 0) << "an empty name counts as all digits";
    EXPECT_EQ(cmp("007", "7"), 0);
    EXPECT_LT(cmp("99999999999999999999998", "99999999999999999999999"), 0);
    EXPECT_GT(cmp("100000000000000000000000", "99999999999999999999999"), 0);
    EXPECT_LT(cmp("1", "4294967296"), 0) << "no wrap around 32 bits";
    EXPECT_EQ(cmp("00099999999999999999999999", "99999999999999999999999"), 0);
}

TEST_F(DirSort, VeryLongNumbersStandByValue)
{
    for (const char *name : {"99999999999999999999999", "18446744073709551616", "1",
                             "18446744073709551615", "100000000000000000000000", "2147483648"})
        m_list.add(name);
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "1 2147483648 18446744073709551615 18446744073709551616 "
                                           "99999999999999999999999 100000000000000000000000 ");
}

TEST_F(DirSort, NumbersAndOthersThatContradictEachOtherAreMergedByBytes)
{
    for (const char *name : {"1a", "10", "2", "3b", "20"})
        m_list.add(name);
    // 2 < 10 by value, 10 < 1a < 2 by bytes.
    std::string ascending = m_list.sorted(dir_cmp_name, 1);
    EXPECT_EQ(ascending, "1a 2 10 20 3b ");
    EXPECT_EQ(m_list.sorted(dir_cmp_name, 0), "3b 20 10 2 1a ");
}

TEST_F(DirSort, TheSizeIsTheLow32BitsAndTheirDifferenceSigned)
{
    m_list.add("big").stat.st_size = (off_t(1) << 32) + 1;
    m_list.add("five").stat.st_size = 5;
    EXPECT_EQ(m_list.sorted(dir_cmp_size), "big five ");
    TestListing far;
    DirEntry zero = far.add("zero");
    DirEntry far_off = far.add("far");
    far_off.stat.st_size = 3000000000;
    EXPECT_LT(dir_cmp_size(far_off, zero), 0) << "more than 2^31 apart the sign turns over";
    EXPECT_GT(dir_cmp_size(zero, far_off), 0);
    far.listing.entries[1]->stat.st_size = 3000000000;
    EXPECT_EQ(far.sorted(dir_cmp_size), "far zero ");
}

TEST_F(DirSort, ByDateWithTiesByName)
{
    m_list.add("new").stat.st_mtime = 300;
    m_list.add("old").stat.st_mtime = 100;
    m_list.add("b").stat.st_mtime = 200;
    m_list.add("a").stat.st_mtime = 200;
    m_list.add("10").stat.st_mtime = 200;
    m_list.add("9").stat.st_mtime = 200;
    EXPECT_EQ(m_list.sorted(dir_cmp_date, 1), "old 9 10 a b new ");
    EXPECT_EQ(m_list.sorted(dir_cmp_date, 0), "new b a 10 9 old ");
}

TEST_F(DirSort, ByOwnerAndGroupNameNotById)
{
    m_list.add("z").stat.st_uid = 1;
    m_list.add("b").stat.st_uid = 2;
    m_list.add("a").stat.st_uid = 3;
    m_list.add("n").stat.st_uid = 500;
    for (int i = 0; i < 4; i++)
        m_list.listing.entries[static_cast<size_t>(i)]->stat.st_gid = static_cast<gid_t>(i + 1);
    EXPECT_EQ(m_list.sorted(dir_cmp_user), "n a b z ") << "500 < amy (twice, by name) < zoe";
    EXPECT_EQ(m_list.sorted(dir_cmp_user, 0), "z b a n ");
    EXPECT_EQ(m_list.sorted(dir_cmp_group), "a n b z ") << "3 < 4 < adm < wheel";
}

TEST_F(DirSort, EachOwnerIsLookedUpOnce)
{
    for (int i = 0; i < 3000; i++)
        m_list.add("f" + std::to_string(i)).stat.st_uid = static_cast<uid_t>(1000 + i % 300);
    dir_sort(m_list.listing, dir_cmp_user, 1);
    EXPECT_EQ(sAsked, 300) << "more owners than the cache holds";
}

TEST_F(DirSort, ByPermissionsTypeIncluded)
{
    m_list.add("exec", S_IFREG | 0755);
    m_list.add("dir", S_IFDIR | 0600);
    m_list.add("plain", S_IFREG | 0644);
    EXPECT_EQ(m_list.sorted(dir_cmp_permissions), "dir plain exec ");
}

TEST_F(DirSort, ByLinkAPlainFileTiesWithEveryOther)
{
    m_list.add_link("l1", "zzz");
    m_list.add("m");
    m_list.add_link("l9", "aaa");
    m_list.add("a");
    const DirEntry &link = *m_list.listing.entries[0];
    const DirEntry &plain = *m_list.listing.entries[1];
    EXPECT_EQ(dir_cmp_link(link, plain), 0);
    EXPECT_EQ(dir_cmp_link(plain, link), 0);
    EXPECT_EQ(dir_cmp_link(plain, plain), 0);
    EXPECT_EQ(m_list.sorted(dir_cmp_link), "a l9 l1 m ");
    EXPECT_EQ(m_list.sorted(dir_cmp_link, 0), "m l1 l9 a ");
}

TEST_F(DirSort, FoldersFirstInBothDirectionsEachGroupByItself)
{
    m_config.record.folders_first = 1;
    m_list.add("f2").stat.st_size = 20;
    m_list.add("d2", S_IFDIR | 0755).stat.st_size = 2;
    m_list.add("f1").stat.st_size = 20;
    m_list.add("d1", S_IFDIR | 0755).stat.st_size = 2;
    m_list.add("d9", S_IFDIR | 0755).stat.st_size = 9;
    m_list.add("f0").stat.st_size = 50;
    EXPECT_EQ(m_list.sorted(dir_cmp_size, 0), "d9 d2 d1 f0 f2 f1 ");
    EXPECT_EQ(m_list.sorted(dir_cmp_size, 1), "d1 d2 d9 f1 f2 f0 ");
    EXPECT_EQ(m_list.sorted(dir_cmp_name, 0), "d9 d2 d1 f2 f1 f0 ");
    m_config.record.folders_first = 0;
    EXPECT_EQ(m_list.sorted(dir_cmp_name, 1), "d1 d2 d9 f0 f1 f2 ");
}

TEST_F(DirSort, ALinkToADirectoryIsAFolder)
{
    m_config.record.folders_first = 1;
    m_list.add("a");
    DirEntry &link = m_list.add_link("z", "somewhere");
    link.stat.st_mode = S_IFDIR | 0755;
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "z a ");
    EXPECT_EQ(dir_cmp_dir(*m_list.listing.entries[0], *m_list.listing.entries[1]), -1);
    EXPECT_EQ(dir_cmp_dir(*m_list.listing.entries[1], *m_list.listing.entries[0]), 1);
    EXPECT_EQ(dir_cmp_dir(link, link), 0);
}

TEST_F(DirSort, OldBytesBehindANameDoNotCount)
{
    DirEntry &reused = m_list.add("abcdefghijklmnop");
    memcpy(reused.name, "ab\0zzzzz", 8);
    m_list.add("ab!");
    m_list.add("aa");
    EXPECT_EQ(m_list.sorted(dir_cmp_name), "aa ab ab! ");
}

// Random listings: names that collide in their first bytes, numbers, links, few distinct key
// values.
void fill(TestListing &list, std::mt19937 &random, int count)
{
    const char *heads[] = {"", "file", "a_long_common_beginning_", "0", "1", "x"};
    for (int i = 0; i < count; i++) {
        std::string name = heads[random() % 6] + std::to_string(random() % 500);
        if (random() % 3 == 0)
            name += static_cast<char>('a' + random() % 26);
        DirEntry &entry = random() % 4 == 0
                              ? list.add_link(name, std::to_string(random() % 9).c_str())
                              : list.add(name, random() % 3 ? S_IFREG | 0644 : S_IFDIR | 0755);
        entry.stat.st_size = static_cast<off_t>(random() % 5);
        entry.stat.st_mtime = static_cast<time_t>(random() % 5);
        entry.stat.st_uid = static_cast<uid_t>(random() % 5);
        entry.stat.st_gid = static_cast<gid_t>(random() % 5);
    }
}

TEST_F(DirSort, TheResultDependsOnTheEntriesAloneAndDescendingIsTheReverse)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; round++) {
        TestListing list;
        fill(list, random, 400);
        // Two entries of one name cannot be told apart; a directory holds none.
        std::sort(list.listing.entries.begin(), list.listing.entries.end(),
                  [](DirEntry *a, DirEntry *b) { return strcmp(a->name, b->name) < 0; });
        for (size_t i = 1; i < 400; i++)
            strcat(list.listing.entries[i]->name, std::to_string(i).c_str());
        for (DirCompare key : KEYS) {
            std::string first = list.sorted(key);
            std::vector<DirEntry *> ascending = list.listing.entries;
            std::shuffle(list.listing.entries.begin(), list.listing.entries.end(), random);
            EXPECT_EQ(list.sorted(key), first);
            std::shuffle(list.listing.entries.begin(), list.listing.entries.end(), random);
            dir_sort(list.listing, key, 0);
            std::reverse(ascending.begin(), ascending.end());
            EXPECT_EQ(list.listing.entries, ascending);
        }
    }
}

TEST_F(DirSort, SizesSoFarApartThatDifferencesWrapStillComeOutTheSame)
{
    // Each is below the next one, and the last one below the first.
    const off_t sizes[] = {0, 0x60000000, 0xC0000000};
    for (int i = 0; i < 60; i++)
        m_list.add("f" + std::to_string(i)).stat.st_size = sizes[i % 3];
    std::mt19937 random(11);
    const std::string first = m_list.sorted(dir_cmp_size);
    for (int round = 0; round < 20; round++) {
        std::shuffle(m_list.listing.entries.begin(), m_list.listing.entries.end(), random);
        EXPECT_EQ(m_list.sorted(dir_cmp_size), first);
    }
    const std::vector<DirEntry *> ascending = m_list.listing.entries;
    dir_sort(m_list.listing, dir_cmp_size, 0);
    dir_sort(m_list.listing, dir_cmp_size, 1);
    EXPECT_EQ(m_list.listing.entries, ascending) << "turned round twice";
}

TEST_F(DirSort, NeighboursStandAsTheKeyAndThenTheNameSay)
{
    std::mt19937 random(8);
    for (DirCompare key :
         {dir_cmp_size, dir_cmp_date, dir_cmp_user, dir_cmp_group, dir_cmp_permissions}) {
        TestListing list;
        fill(list, random, 2000);
        std::erase_if(list.listing.entries, [](DirEntry *entry) {
            bool number = strspn(entry->name, "0123456789") == strlen(entry->name);
            if (number) // with numbers the names are no total order
                dir_free_entry(entry);
            return number;
        });
        list.listing.count = static_cast<int>(list.listing.entries.size());
        dir_sort(list.listing, key, 1);
        for (size_t i = 1; i < list.listing.entries.size(); i++) {
            const DirEntry &a = *list.listing.entries[i - 1];
            const DirEntry &b = *list.listing.entries[i];
            int order = key(a, b);
            EXPECT_LE(order ? order : dir_cmp_name(a, b), 0) << a.name << " " << b.name;
        }
    }
}

TEST_F(DirSort, AnyComparisonIsSafe)
{
    std::mt19937 random(9);
    for (int round = 0; round < 20; round++) {
        TestListing list;
        fill(list, random, 300);
        for (DirEntry *entry : list.listing.entries)
            entry->stat.st_size = static_cast<off_t>(random()) * 3; // differences wrap everywhere
        std::vector<DirEntry *> before = list.listing.entries;
        std::sort(before.begin(), before.end());
        static std::mt19937 *sRandom;
        sRandom = &random;
        dir_sort(
            list.listing,
            [](const DirEntry &, const DirEntry &) { return static_cast<int>((*sRandom)()); }, 1);
        dir_sort(
            list.listing, [](const DirEntry &, const DirEntry &) { return -1; }, 1);
        dir_sort(
            list.listing, [](const DirEntry &, const DirEntry &) { return INT_MIN; }, 0);
        dir_sort(list.listing, dir_cmp_size, 0);
        dir_sort(list.listing, dir_cmp_link, 0);
        std::vector<DirEntry *> after = list.listing.entries;
        std::sort(after.begin(), after.end());
        EXPECT_EQ(after, before) << "nothing lost, nothing doubled";
    }
}

TEST_F(DirSort, AComparisonOfAnotherKindDecidesAndTiesGoByName)
{
    for (const char *name : {"cc", "b", "aaa", "a", "bb"})
        m_list.add(name);
    auto by_length = [](const DirEntry &a, const DirEntry &b) {
        return static_cast<int>(strlen(a.name)) - static_cast<int>(strlen(b.name));
    };
    EXPECT_EQ(m_list.sorted(by_length, 1), "a b bb cc aaa ");
    EXPECT_EQ(m_list.sorted(by_length, 0), "aaa cc bb b a ");
}

TEST_F(DirSort, LongNamesThatDifferOnlyAtTheEnd)
{
    std::string head(254, 'x');
    for (char c : {'b', 'a', 'c'})
        m_list.add(head + c);
    m_list.add(head);
    for (int i = 0; i < 20; i++)
        m_list.add(std::string(static_cast<size_t>(230 + i), 'x'));
    dir_sort(m_list.listing, dir_cmp_name, 1);
    for (int i = 1; i < m_list.listing.count; i++)
        EXPECT_LT(strcmp(m_list.listing.entries[static_cast<size_t>(i - 1)]->name,
                         m_list.listing.entries[static_cast<size_t>(i)]->name),
                  0);
    EXPECT_EQ(m_list.listing.entries.back()->name, head + "c");
}

// What happens between two moments at which waiting events may run.
int sLooks, sCompared, sMostCompared;
const DirListing *sShown;
bool sWhole; // every entry was still there at each such moment

bool look_whole()
{
    sLooks++;
    sMostCompared = std::max(sMostCompared, sCompared);
    sCompared = 0;
    for (int i = 0; i < sShown->count; i++)
        sWhole = sWhole && sShown->entries[static_cast<size_t>(i)]->name[0];
    return false; // a sort is not stopped
}

TEST_F(DirSort, WaitingEventsRunDuringEverySortAndDoNotStopIt)
{
    constexpr int COUNT = 20000;
    std::mt19937 random(7);
    for (int i = 0; i < COUNT; i++) {
        DirEntry &entry = m_list.add("some_name_" + std::to_string(random()));
        entry.stat.st_size = static_cast<off_t>(random() % 100);
        entry.stat.st_mode = random() % 3 ? S_IFREG : S_IFDIR;
    }
    const DirHooks before = gDirHooks;
    gDirHooks.pending = look_whole;
    sShown = &m_list.listing;
    for (DirCompare key : KEYS)
        for (int folders_first : {0, 1}) {
            gConfig->folders_first = folders_first;
            sLooks = 0;
            sWhole = true;
            dir_sort(m_list.listing, key, 1);
            EXPECT_GE(sLooks, COUNT / 4096);
            EXPECT_TRUE(sWhole);
        }
    gDirHooks = before;
    std::vector<DirEntry *> all = m_list.listing.entries;
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end()) << "none stands there twice";
}

TEST_F(DirSort, EventsNeverWaitLongerThanForSomeThousandComparisons)
{
    for (int i = 0; i < 30000; i++)
        m_list.add(std::to_string(i * 7919 % 30000) + "x");
    const DirHooks before = gDirHooks;
    gDirHooks.pending = look_whole;
    sShown = &m_list.listing;
    sCompared = sMostCompared = 0;
    dir_sort(
        m_list.listing,
        [](const DirEntry &a, const DirEntry &b) {
            sCompared++;
            return strcmp(b.name, a.name);
        },
        1);
    gDirHooks = before;
    EXPECT_GT(sMostCompared, 0);
    EXPECT_LE(sMostCompared, 40000) << "4096 entries, each put in its place among twelve";
    EXPECT_EQ(std::string(m_list.listing.entries.front()->name), "9x");
}

} // namespace
