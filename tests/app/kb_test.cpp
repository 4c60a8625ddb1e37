// The action registry and the key bindings with their file.
#include "app/ac.h"
#include "app/kb.h"

#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <sstream>
#include <unistd.h>

using namespace tav;
using testing::ElementsAre;

namespace {

std::vector<std::string> sCalls; // what the callbacks did
void *sData;
void *sInfo;

int first_cb(QWidget *, void *data, void *info)
{
    sCalls.push_back("first");
    sData = data;
    sInfo = info;
    return 0;
}

int second_cb(QWidget *, void *, void *)
{
    sCalls.push_back("second");
    return 0;
}

QWidget *widget(int number)
{
    static char places[4];
    return reinterpret_cast<QWidget *>(&places[number]);
}

class Kb : public testing::Test {
protected:
    void SetUp() override
    {
        char name[] = "/tmp/tav-kb-XXXXXX";
        dir = mkdtemp(name);
        clear();
        sCalls.clear();
    }
    void TearDown() override
    {
        unlink((dir + "/keys").c_str());
        rmdir(dir.c_str());
        clear();
    }
    static void clear()
    {
        gLinks.clear();
        gSections.clear();
        gActions.clear();
    }
    // Every binding as "section action mods cap flags", in the lists' order.
    static std::vector<std::string> bindings()
    {
        std::vector<std::string> all;
        for (const KbSection &section : gSections)
            for (const KbMod &mod : section.mods)
                for (const KbCap &cap : mod.caps)
                    all.push_back(section.name + ' ' + cap.action->name + ' ' +
                                  std::to_string(mod.mods) + ' ' + std::to_string(cap.cap) +
                                  (cap.flags & KB_DEFAULT ? " default" : ""));
        return all;
    }
    std::string saved()
    {
        EXPECT_EQ(kb_save(dir.c_str(), "keys"), 0);
        std::ifstream in(dir + "/keys");
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void write(const std::string &text) { std::ofstream(dir + "/keys") << text; }
    int press(uint32_t mods, uint32_t cap, uint32_t flags = KB_KEY_DOWN | KB_CAP_VALID)
    {
        KbKeyEvent event{mods, flags, cap};
        return kb_process(widget(0), nullptr, &event);
    }
    std::string dir;
};

TEST_F(Kb, RegisteringTheSameCallbackTwiceLeavesOneEntry)
{
    ac_register("open", first_cb);
    ac_register("open", first_cb);
    ac_register("open", second_cb);
    AcAction *action = x_get_action("open");
    ASSERT_TRUE(action);
    EXPECT_EQ(std::distance(action->callbacks.begin(), action->callbacks.end()), 2);
    EXPECT_EQ(std::distance(gActions.begin(), gActions.end()), 1);
    EXPECT_TRUE(x_get_cb(*action, second_cb));
}

TEST_F(Kb, NamesAreComparedExactly)
{
    ac_register("open", first_cb);
    EXPECT_FALSE(x_get_action("Open"));
    EXPECT_FALSE(x_get_action("ope"));
}

TEST_F(Kb, ANewerRecordStandsInFrontOfAnOlderOne)
{
    ac_register("a", first_cb);
    ac_register("b", first_cb);
    EXPECT_EQ(gActions.front().name, "b");
    kb_attach("a", "one", 1, 10);
    kb_attach("a", "two", 1, 10);
    EXPECT_EQ(gSections.front().name, "two");
}

TEST_F(Kb, ASecondKeyKeepsTheFirstAsTheDefault)
{
    kb_attach("open", "filelist", 0, 10);
    kb_attach("open", "filelist", 4, 11);
    EXPECT_THAT(bindings(), ElementsAre("filelist open 4 11", "filelist open 0 10 default"));
}

TEST_F(Kb, SetDefaultMovesTheDefault)
{
    kb_attach("open", "filelist", 0, 10);
    kb_attach("open", "filelist", 4, 11);
    EXPECT_EQ(kb_set_default("open", "filelist", 4, 11), 0);
    EXPECT_THAT(bindings(), ElementsAre("filelist open 4 11 default", "filelist open 0 10"));
}

TEST_F(Kb, SetDefaultRefusesWhatDoesNotExist)
{
    kb_attach("open", "filelist", 0, 10);
    EXPECT_EQ(kb_set_default("close", "filelist", 0, 10), -1);
    EXPECT_EQ(kb_set_default("open", "tree", 0, 10), -1);
    EXPECT_EQ(kb_set_default("open", "filelist", 1, 10), -1);
    EXPECT_EQ(kb_set_default("open", "filelist", 0, 11), -1);
    EXPECT_THAT(bindings(), ElementsAre("filelist open 0 10 default"));
}

TEST_F(Kb, AKeyThatIsBoundAgainKeepsItsMark)
{
    kb_attach("open", "filelist", 0, 10);
    kb_attach("view", "filelist", 0, 20);
    kb_attach("view", "filelist", 0, 10); // was the default of open, view has its own
    EXPECT_THAT(bindings(),
                ElementsAre("filelist view 0 20 default", "filelist view 0 10 default"));
}

TEST_F(Kb, AccelTextIsTheUntouchedBufferWhenThereIsADefault)
{
    char buffer[8] = "before";
    EXPECT_EQ(kb_get_accel_text("open", "filelist", buffer), nullptr);
    kb_attach("open", "filelist", 0, 10);
    EXPECT_EQ(kb_get_accel_text("open", "filelist", buffer), buffer);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(kb_get_accel_text("open", "tree", buffer), nullptr);
}

TEST_F(Kb, AFreshPressCallsEveryCallbackFrontFirst)
{
    ac_register("open", first_cb);
    ac_register("open", second_cb);
    kb_attach("open", "filelist", 2, 10);
    ac_link_widget(widget(0), "filelist");
    KbKeyEvent event{2, KB_KEY_DOWN | KB_CAP_VALID | 0x10, 10};
    int data = 0;
    EXPECT_EQ(kb_process(widget(0), &data, &event), 1);
    EXPECT_THAT(sCalls, ElementsAre("second", "first"));
    EXPECT_EQ(sData, &data);
    EXPECT_EQ(sInfo, &event);
}

TEST_F(Kb, RepeatsReleasesAndOtherModifiersAreNotDispatched)
{
    ac_register("open", first_cb);
    kb_attach("open", "filelist", 2, 10);
    ac_link_widget(widget(0), "filelist");
    EXPECT_EQ(press(2, 10, KB_KEY_DOWN | KB_KEY_REPEAT | KB_CAP_VALID), 0);
    EXPECT_EQ(press(2, 10, KB_CAP_VALID), 0);
    EXPECT_EQ(press(2, 10, KB_KEY_DOWN), 0);
    EXPECT_EQ(press(2 | 0x10000, 10), 0); // a lock bit counts
    EXPECT_EQ(press(0, 10), 0);
    EXPECT_EQ(press(2, 11), 0);
    EXPECT_TRUE(sCalls.empty());
    EXPECT_EQ(press(2, 10), 1);
}

TEST_F(Kb, KeysOfAnUnlinkedWidgetGoOn)
{
    ac_register("open", first_cb);
    kb_attach("open", "filelist", 2, 10);
    EXPECT_EQ(press(2, 10), 0);
    ac_link_widget(widget(0), "filelist");
    ac_link_widget(widget(1), "filelist");
    ac_unlink_widget(widget(0));
    ac_unlink_widget(widget(2));
    EXPECT_EQ(press(2, 10), 0);
    EXPECT_EQ(std::distance(gLinks.begin(), gLinks.end()), 1);
}

TEST_F(Kb, LinkingAgainMovesTheWidgetToTheNewSection)
{
    ac_link_widget(widget(0), "filelist");
    ac_link_widget(widget(0), "tree");
    ASSERT_EQ(std::distance(gLinks.begin(), gLinks.end()), 1);
    EXPECT_EQ(gLinks.front().section->name, "tree");
    EXPECT_TRUE(x_get_section("filelist"));
}

TEST_F(Kb, TheFileHoldsTheDefaultFirst)
{
    kb_attach("open", "filelist", 0, 10);
    kb_attach("open", "filelist", 4294967295u, 61453);
    kb_attach("view", "tree", 1, 20);
    kb_set_default("open", "filelist", 4294967295u, 61453);
    EXPECT_EQ(saved(),
              "[tree]\n'view' 1 20\n\n[filelist]\n'open' 4294967295 61453\n'open' 0 10\n\n");
}

TEST_F(Kb, WhatWasSavedComesBackWithItsDefaults)
{
    kb_attach("open", "filelist", 0, 10);
    kb_attach("open", "filelist", 1, 11);
    kb_attach("view", "filelist", 1, 20);
    kb_set_default("open", "filelist", 1, 11);
    auto before = bindings();
    saved();
    clear();
    EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
    auto after = bindings();
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    EXPECT_EQ(after, before);
}

TEST_F(Kb, WithoutSectionsTheFileIsEmpty)
{
    EXPECT_EQ(saved(), "");
    EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
}

TEST_F(Kb, NamesLongerThanAPieceDoNotComeBack)
{
    const std::string name(40, 'n');
    kb_attach(name.c_str(), "filelist", 0, 10);
    kb_attach("short", "filelist", 0, 11);
    saved();
    clear();
    EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
    EXPECT_THAT(bindings(), ElementsAre("filelist short 0 11 default"));
}

TEST_F(Kb, OtherLinesAndBindingsOutsideASectionAreIgnored)
{
    write("'lost' 1 2\n# note\n[tree]\n\nopen 1 2\n'open' 3 4\n'half' 5\n[x]y\n'view' 6 7");
    EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
    EXPECT_THAT(bindings(), ElementsAre("x view 6 7 default", "tree open 3 4 default"));
}

TEST_F(Kb, ANullDirectoryMeansTheNameIsThePath)
{
    kb_attach("open", "filelist", 0, 10);
    EXPECT_EQ(kb_save(nullptr, (dir + "/keys").c_str()), 0);
    EXPECT_EQ(kb_load(nullptr, (dir + "/keys").c_str()), 0);
    EXPECT_EQ(kb_load((dir + "/").c_str(), "keys"), 0);
}

TEST_F(Kb, WhatCannotBeOpenedIsMinusOne)
{
    EXPECT_EQ(kb_load(nullptr, nullptr), -1);
    EXPECT_EQ(kb_save(nullptr, nullptr), -1);
    EXPECT_EQ(kb_load(dir.c_str(), "missing"), -1);
    EXPECT_EQ(kb_save((dir + "/missing").c_str(), "keys"), -1);
}

TEST_F(Kb, RandomBytesDoNoHarm)
{
    std::minstd_rand random(7);
    for (int round = 0; round < 20; ++round) {
        std::string text;
        for (int i = 0; i < 5000; ++i)
            text += "['] \n\0\xff"
                    "019a"[random() % 11];
        write(text);
        EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
        saved();
        EXPECT_EQ(kb_load(dir.c_str(), "keys"), 0);
    }
}

TEST_F(Kb, TheStartUpHooksBindNothing)
{
    init_actions();
    init_kb_defaults();
    EXPECT_TRUE(gActions.empty());
    EXPECT_TRUE(gSections.empty());
}

} // namespace
