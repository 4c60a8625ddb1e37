// The caches of user and group names.
#include "model/dir.h"

#include <gtest/gtest.h>
#include <map>

using namespace tav;

namespace {

// A table of users and groups in place of the system's.
class DirNames : public testing::Test {
protected:
    void SetUp() override
    {
        sAsked.clear();
        sNames = {{0, "root"}, {7, "seven"}};
        gDirIds.user = [](uid_t id) { return ask(id); };
        gDirIds.group = [](gid_t id) { return ask(id); };
        dir_forget_names();
    }
    void TearDown() override
    {
        gDirIds = m_old;
        dir_forget_names();
    }
    static const char *ask(uint32_t id)
    {
        sAsked[id]++;
        auto found = sNames.find(id);
        return found == sNames.end() ? nullptr : found->second.c_str();
    }
    static std::map<uint32_t, int> sAsked;
    static std::map<uint32_t, std::string> sNames;
    DirIdSource m_old = gDirIds;
    char m_name[DIR_NAME_SIZE];
};
std::map<uint32_t, int> DirNames::sAsked;
std::map<uint32_t, std::string> DirNames::sNames;

TEST_F(DirNames, ANameJustFetchedAnswersZeroALaterOneItsLength)
{
    EXPECT_EQ(dir_get_username(7, m_name), 0);
    EXPECT_STREQ(m_name, "seven");
    EXPECT_EQ(dir_get_username(7, m_name), 5);
    EXPECT_STREQ(m_name, "seven");
    EXPECT_EQ(sAsked[7], 1);
    EXPECT_EQ(dir_get_groupname(7, m_name), 0);
    EXPECT_EQ(dir_get_groupname(7, m_name), 5);
}

TEST_F(DirNames, AnUnknownIdIsItsNumber)
{
    EXPECT_EQ(dir_get_username(12345, m_name), 5);
    EXPECT_STREQ(m_name, "12345");
    EXPECT_EQ(dir_get_username(12345, m_name), 5);
    EXPECT_EQ(sAsked[12345], 1);
    EXPECT_EQ(dir_get_groupname(4294967295u, m_name), 10);
    EXPECT_STREQ(m_name, "4294967295");
}

TEST_F(DirNames, ALongNameIsCutTo15Characters)
{
    sNames[8] = "a_user_name_without_end";
    dir_get_username(8, m_name);
    EXPECT_STREQ(m_name, "a_user_name_wit");
    EXPECT_EQ(dir_get_username(8, m_name), 15);
}

TEST_F(DirNames, The257thUserEvictsTheFirst)
{
    for (uint32_t id = 1000; id < 1256; id++)
        dir_get_username(id, m_name);
    dir_get_username(1000, m_name);
    EXPECT_EQ(sAsked[1000], 1) << "256 fit";
    dir_get_username(1256, m_name);
    dir_get_username(1001, m_name);
    EXPECT_EQ(sAsked[1001], 1);
    dir_get_username(1000, m_name);
    EXPECT_EQ(sAsked[1000], 2) << "the oldest is gone";
    dir_get_username(1001, m_name);
    EXPECT_EQ(sAsked[1001], 2) << "and its return evicted the next oldest";
    dir_get_username(1003, m_name);
    EXPECT_EQ(sAsked[1003], 1);
}

TEST_F(DirNames, The65thGroupEvictsTheFirst)
{
    for (uint32_t id = 0; id < 65; id++)
        dir_get_groupname(id, m_name);
    dir_get_groupname(1, m_name);
    EXPECT_EQ(sAsked[1], 1);
    dir_get_groupname(0, m_name);
    EXPECT_EQ(sAsked[0], 2);
}

TEST_F(DirNames, AnEmptyNameIsNoHitAndLandsInTheNewestRecord)
{
    sNames[1] = "";
    dir_get_username(1, m_name);
    dir_get_username(7, m_name);
    sNames[1] = "late";
    EXPECT_EQ(dir_get_username(1, m_name), 0);
    EXPECT_STREQ(m_name, "late");
    EXPECT_EQ(sAsked[1], 2);
    EXPECT_EQ(dir_get_username(7, m_name), 4);
    EXPECT_STREQ(m_name, "late") << "the newest record was 7's";
}

TEST_F(DirNames, TheSystemKnowsRoot)
{
    gDirIds = m_old;
    dir_forget_names();
    dir_get_username(0, m_name);
    EXPECT_STREQ(m_name, "root");
    dir_get_groupname(0, m_name);
    EXPECT_STREQ(m_name, "root");
}

} // namespace
