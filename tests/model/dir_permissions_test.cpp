// Permission texts, both ways.
#include "model/dir.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

std::string text_of(mode_t mode, int part)
{
    char text[5] = "....";
    dir_get_permissions(mode, text, part);
    return std::string(text, 4);
}

struct Case {
    mode_t mode;
    int part;
    const char *text; // "." is what was there before
};

class DirPermissions : public testing::TestWithParam<Case> {};

TEST_P(DirPermissions, Text)
{
    EXPECT_EQ(text_of(GetParam().mode, GetParam().part), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Dir, DirPermissions,
                         testing::Values(Case{04755, 1, "rws."}, Case{04755, 2, "r-x."},
                                         Case{04755, 3, "r-x."}, Case{01777, 3, "rwt."},
                                         Case{01776, 3, "rwt."}, Case{02640, 2, "r-S."},
                                         Case{04644, 1, "rwS."}, Case{02755, 2, "r-s."},
                                         Case{0000, 1, "---."}, Case{0111, 1, "--x."},
                                         Case{0222, 2, "-w-."}, Case{0444, 3, "r--."},
                                         Case{01000, 4, "s..."}, Case{0777, 4, "-..."},
                                         Case{0777, 5, "...."}, Case{0777, -1, "...."}));

// Bits are tested, not the type: so several kinds answer as another.
INSTANTIATE_TEST_SUITE_P(DirType, DirPermissions,
                         testing::Values(Case{S_IFDIR, 0, "b..."}, Case{S_IFBLK, 0, "b..."},
                                         Case{S_IFCHR, 0, "b..."}, Case{S_IFLNK, 0, "b..."},
                                         Case{S_IFSOCK, 0, "b..."}, Case{S_IFIFO, 0, "p..."},
                                         Case{S_IFREG, 0, "l..."}, Case{0777, 0, "-..."}));

struct SetCase {
    mode_t from;
    const char *letters;
    int part;
    int set;
    mode_t to;
};

class DirSetPermissions : public testing::TestWithParam<SetCase> {};

TEST_P(DirSetPermissions, Mode)
{
    mode_t mode = GetParam().from;
    dir_set_permissions(&mode, GetParam().letters, GetParam().part, GetParam().set);
    EXPECT_EQ(mode, GetParam().to);
}

INSTANTIATE_TEST_SUITE_P(
    Dir, DirSetPermissions,
    testing::Values(SetCase{0, "rwx", 1, 1, 0700}, SetCase{0, "rwx", 2, 1, 0070},
                    SetCase{0, "rwx", 3, 1, 0007}, SetCase{0, "s", 1, 1, 04000},
                    SetCase{0, "S", 2, 1, 02000}, SetCase{0, "s", 3, 1, 0},
                    SetCase{0, "s", 4, 1, 01000}, SetCase{0, "S", 4, 1, 0},
                    SetCase{0, "rwx", 4, 1, 0}, SetCase{0100777, "wx", 3, 0, 0100774},
                    SetCase{07777, "sS", 1, 0, 03777}, SetCase{07777, "s", 4, 0, 06777},
                    SetCase{0, "-q r!", 1, 1, 0400}, SetCase{0, "rwx", 0, 1, 0},
                    SetCase{0, "rwx", 5, 1, 0}, SetCase{0, "", 1, 1, 0}));

TEST(DirPermissionsAll, TextsReadBackGiveTheSameBits)
{
    for (mode_t mode = 0; mode < 010000; mode++) {
        mode_t back = 0;
        for (int part = 1; part <= 4; part++) {
            std::string letters = text_of(mode, part).substr(0, part == 4 ? 1 : 3);
            if (part == 3 && letters[2] == 't')
                letters[2] = mode & 1 ? 'x' : '-';
            if (part < 3 && letters[2] == 's')
                letters += 'x';
            dir_set_permissions(&back, letters.c_str(), part, 1);
        }
        ASSERT_EQ(back, mode);
    }
}

} // namespace
