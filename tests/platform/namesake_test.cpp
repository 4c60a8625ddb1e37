// Which PATH a command needs where the system has something else of the same name.
#include "platform/namesake.h"

#include "testdir.h"

#include <gtest/gtest.h>

namespace tav {
namespace {

class Namesake : public testing::Test {
protected:
    Namesake()
    {
        for (const char *folder : {"system", "mine", "ours"})
            m_dir.dir(folder);
        gNamesakeFolder = m_dir.at("ours");
        gNamesakeSystem = {m_dir.at("system")};
    }
    ~Namesake() override
    {
        gNamesakeFolder.clear();
        gNamesakeSystem.clear();
    }

    TestDir m_dir;
    TestEnv m_path{"PATH", (m_dir.at("mine") + ":" + m_dir.at("system")).c_str()};
};

TEST_F(Namesake, OursComesFirstWhereTheSystemHasAnother)
{
    for (const char *name : {"pv", "pterm", "slay"}) {
        m_dir.text(std::string("system/") + name, "", 0755);
        EXPECT_EQ(namesake_path(name), m_dir.at("ours") + ":" + std::getenv("PATH")) << name;
    }
}

TEST_F(Namesake, TheUsersOwnWins)
{
    m_dir.text("system/pv", "", 0755);
    m_dir.text("mine/pv", "", 0755);
    EXPECT_EQ(namesake_path("pv"), "");
}

TEST_F(Namesake, WithoutAnotherNothingChanges)
{
    EXPECT_EQ(namesake_path("pv"), "");
    m_dir.text("system/pv", "", 0644);
    EXPECT_EQ(namesake_path("pv"), "");
}

TEST_F(Namesake, OtherNamesMeanTheSameEverywhere)
{
    for (const char *name : {"ped", "realplay", "make", "", "/usr/bin/pv"}) {
        if (*name != '\0' && *name != '/')
            m_dir.text(std::string("system/") + name, "", 0755);
        EXPECT_EQ(namesake_path(name), "") << name;
    }
}

TEST_F(Namesake, WithoutAFolderOfOursNothingChanges)
{
    m_dir.text("system/pv", "", 0755);
    gNamesakeFolder.clear();
    EXPECT_EQ(namesake_path("pv"), "");
}

} // namespace
} // namespace tav
