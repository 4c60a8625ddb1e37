// Hidden siblings: what a copy is called until it is complete, on a file system that has no unnamed
// files.
#include "fileops/fop_copy.h"
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {
namespace {

struct FopTemp : FopTest {
    FopTemp()
    {
        gFopSys.openat = [](int at, const char *path, int flags, mode_t mode) {
            if ((flags & O_TMPFILE) == O_TMPFILE) {
                errno = EOPNOTSUPP;
                return -1;
            }
            return gFopSysReal.openat(at, path, flags, mode);
        };
    }
};

TEST_F(FopTemp, a_file_system_without_unnamed_files_gets_hidden_siblings)
{
    dir.file("src/a", "new");
    dir.file("src/b", "new");
    dir.file("dst/b", "old", 0640);
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.all("dst"),
              (std::map<std::string, std::string>{{"a", "file new"}, {"b", "file new"}}));
    EXPECT_EQ(dir.status("dst/b").st_mode & 07777, 0640u);
    EXPECT_EQ(dir.status("dst/a").st_mode & 07777, 0644u);
}

// Its process was killed long ago, and had the number that this one has.
TEST_F(FopTemp, a_hidden_name_that_is_taken_is_no_obstacle)
{
    dir.file("src/a", "new");
    const std::string last = fop_temp_name();
    const size_t dash = last.rfind('-');
    const unsigned count = static_cast<unsigned>(std::stoul(last.substr(dash + 1)));
    for (unsigned i = 1; i <= 3; i++)
        dir.file("dst/" + last.substr(0, dash + 1) + std::to_string(count + i), "left");
    driver.copy(dir, {"a"});
    EXPECT_EQ(driver.texts(), "");
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_EQ(dir.all("dst").size(), 4u) << "and none of the others was touched";
}

// And no rename that replaces nothing.
TEST_F(FopTemp, a_hidden_sibling_replaces_only_what_is_known_to_be_free)
{
    sys_replacing_renames();
    static int sError;
    static ino_t sDst;
    sDst = dir.status("dst").st_ino;
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        struct stat in;
        bool there = ::fstat(at, &in) == 0 && in.st_ino == sDst && std::strcmp(path, "a") == 0;
        if (!there || sError == 0)
            return gFopSysReal.fstatat(at, path, status, flags);
        errno = sError;
        return -1;
    };
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    sError = EIO;
    driver.answers = {1};
    driver.copy(dir, {"a"});
    EXPECT_EQ(text(0), "Error writing " + quoted("dst/a") + "\nInput/output error\n");
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file old"}}));
    sError = 0;
    ::unlink((dir / "dst/a").c_str());
    driver.copy(dir, {"a"});
    EXPECT_EQ(dir.all("dst"), (std::map<std::string, std::string>{{"a", "file new"}}));
}

} // namespace
} // namespace tav
