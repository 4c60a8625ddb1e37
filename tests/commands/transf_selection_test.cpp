// Packing the selection of the shown directory.
#include "commands/transf.h"
#include "model/dir.h"

#include <cstring>
#include <deque>
#include <gmock/gmock.h>
#include <string>

using namespace tav;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

namespace {

// gDir with these entries, all of them files unless the name ends in "/", selected when it begins
// with "+".
class Selection : public testing::Test {
protected:
    void list(std::initializer_list<const char *> names)
    {
        gDir.path = "/shown";
        for (const char *name : names) {
            DirEntry &entry = m_entries.emplace_back();
            entry = {};
            std::string text = name;
            if (text.front() == '+') {
                entry.flags = DIR_SELECTED;
                text.erase(0, 1);
                gDir.nselected++;
            }
            entry.stat.st_mode = text.back() == '/' ? S_IFDIR : S_IFREG;
            if (text.back() == '/')
                text.pop_back();
            strcpy(entry.name, text.c_str());
            gDir.entries.push_back(&entry);
            gDir.count++;
        }
    }
    void TearDown() override { gDir = {}; }
    std::deque<DirEntry> m_entries;
};

} // namespace

TEST_F(Selection, IsPackedInListOrder)
{
    list({"+b", "x", "+a", "+d/"});
    FileListRecord packed = fl_pack_transf();
    EXPECT_EQ(packed.count, 3);
    EXPECT_STREQ(packed.directory, "/shown");
    EXPECT_THAT(packed.names, ElementsAre(StrEq("b"), StrEq("a"), StrEq("d")));
    EXPECT_FALSE(one_dir_packed);
    fl_free_transf(packed);
    EXPECT_EQ(packed.count, 0);
    EXPECT_THAT(packed.names, IsEmpty());
}

TEST_F(Selection, OfExactlyOneDirectoryIsNoted)
{
    list({"x", "+d/"});
    fl_pack_transf();
    EXPECT_TRUE(one_dir_packed);
}

TEST_F(Selection, OfOneFileOrOfNothingIsNoDirectory)
{
    list({"+x", "d/"});
    one_dir_packed = true;
    fl_pack_transf();
    EXPECT_FALSE(one_dir_packed);
    gDir.entries[0]->flags = 0;
    gDir.nselected = 0;
    one_dir_packed = true;
    EXPECT_EQ(fl_pack_transf().count, 0);
    EXPECT_FALSE(one_dir_packed);
}
