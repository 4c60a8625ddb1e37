// Questions about paths.
#include "model/fs.h"

#include "testdir.h"

#include <gtest/gtest.h>

using namespace tav;

namespace {

TEST(Fs, IsDirectoryAnswersLinksZeroOrMinusOne)
{
    TestDir dir;
    dir.dir("sub");
    dir.file("file");
    dir.link("link", "sub");
    dir.link("broken", "nowhere");
    EXPECT_GE(fs_path_is_directory(dir.at("sub").c_str()), 1);
    EXPECT_GE(fs_path_is_directory(dir.at("link").c_str()), 1);
    EXPECT_EQ(fs_path_is_directory(dir.at("sub").c_str()),
              static_cast<int>(dir.status("sub").st_nlink));
    EXPECT_EQ(fs_path_is_directory(dir.at("file").c_str()), 0);
    EXPECT_EQ(fs_path_is_directory(dir.at("missing").c_str()), -1);
    EXPECT_EQ(fs_path_is_directory(dir.at("broken").c_str()), -1);
    EXPECT_EQ(fs_path_is_directory(nullptr), -1);
}

TEST(Fs, HasSubdirectoriesLooksOnlyAtRealDirectories)
{
    TestDir dir;
    dir.dir("empty");
    dir.dir("with/sub");
    dir.dir("linked");
    dir.link("linked/to", "..");
    dir.file("linked/file");
    EXPECT_EQ(fs_path_has_subdirectories(dir.path().c_str(), "empty", 0), 0);
    EXPECT_GT(fs_path_has_subdirectories(dir.path().c_str(), "with", 0), 0);
    EXPECT_EQ(fs_path_has_subdirectories(dir.path().c_str(), "linked", 0), 0) << "follows no link";
    EXPECT_GT(fs_path_has_subdirectories(dir.at("with").c_str(), nullptr, 0), 0);
    EXPECT_GT(fs_path_has_subdirectories(nullptr, dir.at("with").c_str(), 0), 0);
}

TEST(Fs, HiddenSubdirectoriesCountWhenAskedFor)
{
    TestDir dir;
    dir.dir("d/.hidden");
    // Where the link count tells already, it is believed without looking.
    bool told = fs_path_is_directory(dir.at("d").c_str()) > 2;
    EXPECT_EQ(fs_path_has_subdirectories(nullptr, dir.at("d").c_str(), 0) > 0, told);
    EXPECT_GT(fs_path_has_subdirectories(nullptr, dir.at("d").c_str(), FS_DOT_NAMES), 0);
    dir.dir("e");
    EXPECT_EQ(fs_path_has_subdirectories(nullptr, dir.at("e").c_str(), FS_DOT_NAMES), 0);
}

TEST(Fs, HasSubdirectoriesFailsWhereNothingCanBeRead)
{
    TestDir dir;
    dir.file("file");
    EXPECT_EQ(fs_path_has_subdirectories(dir.path().c_str(), "missing", 0), -1);
    EXPECT_EQ(fs_path_has_subdirectories(dir.path().c_str(), "file", 0), -1);
    std::string closed = dir.dir("closed", 0700);
    EXPECT_EQ(test_as_ordinary_user([&] {
                  if (geteuid() == dir.status("closed").st_uid)
                      chmod(closed.c_str(), 0);
                  return fs_path_has_subdirectories(nullptr, closed.c_str(), 0) == -1 ? 1 : 0;
              }),
              1);
}

} // namespace
