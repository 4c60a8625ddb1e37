// What makes a copy like its source: bytes, holes, mode, owner, times, attributes, access lists.
#include "fop_driver.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {
namespace {

using FopLike = FopTest;

TEST_F(FopLike, an_overwritten_file_keeps_its_mode_and_a_new_one_gets_the_sources)
{
    dir.file("src/a", "new", 0777);
    dir.file("src/b", "new", 0666);
    dir.file("dst/a", "old", 0604);
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_EQ(dir.status("dst/a").st_mode & 07777, 0604u);
    EXPECT_EQ(dir.status("dst/b").st_mode & 07777, 0644u) << "less the mask";
}

TEST_F(FopLike, times_arrive_to_the_nanosecond)
{
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    dir.fifo("src/d/f");
    timespec times[2] = {{1'000'000'001, 111'222'333}, {1'000'000'002, 444'555'666}};
    for (const char *name : {"src/d/a", "src/d/f", "src/d"})
        ASSERT_EQ(::utimensat(AT_FDCWD, (dir / name).c_str(), times, 0), 0);
    driver.copy(dir, {"d"});
    for (const char *name : {"dst/d/a", "dst/d/f", "dst/d"}) {
        struct stat status = dir.status(name);
        EXPECT_EQ(status.st_mtim.tv_sec, 1'000'000'002) << name;
        EXPECT_EQ(status.st_mtim.tv_nsec, 444'555'666) << name;
    }
    EXPECT_EQ(dir.status("dst/d/a").st_atim.tv_nsec, 111'222'333);
}

TEST_F(FopLike, extended_attributes_arrive)
{
    Attributes attributes(dir);
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    attributes.set(dir / "src/d/a", "user.colour", "blue");
    attributes.set(dir / "src/d/a", "user.long", std::string(900, 'v'));
    attributes.set(dir / "src/d", "user.shape", "round");
    driver.copy(dir, {"d"});
    EXPECT_EQ(attributes.get(dir / "dst/d/a", "user.colour"), "blue");
    EXPECT_EQ(attributes.get(dir / "dst/d/a", "user.long"), std::string(900, 'v'));
    EXPECT_EQ(attributes.get(dir / "dst/d", "user.shape"), "round");
    EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
}

TEST_F(FopLike, many_attributes_arrive)
{
    Attributes attributes(dir);
    dir.file("src/a", "1");
    for (int i = 0; i < 60; i++)
        attributes.set(dir / "src/a", "user.attribute_of_some_length_" + std::to_string(i), "v");
    driver.copy(dir, {"a"});
    for (int i = 0; i < 60; i++)
        EXPECT_EQ(
            attributes.get(dir / "dst/a", "user.attribute_of_some_length_" + std::to_string(i)),
            "v");
}

// Each of these is what some file system says that cannot hold an attribute.
TEST_F(FopLike, what_the_target_cannot_hold_is_no_error)
{
    Attributes attributes(dir);
    dir.file("src/a", "1");
    attributes.set(dir / "src/a", "user.colour", "blue");
    static int sError;
    gFopSys.setxattr = [](int, const char *, const void *, size_t) {
        errno = sError;
        return -1;
    };
    for (int error : {EOPNOTSUPP, EPERM, EACCES, ENOSPC, E2BIG, ERANGE, EINVAL}) {
        sError = error;
        driver.copy(dir, {"a"}, FOP_OVERWRITE);
        EXPECT_TRUE(driver.alerts.empty()) << driver.texts();
        EXPECT_EQ(dir.read("dst/a"), "1");
    }
}

TEST_F(FopLike, a_move_keeps_a_source_whose_attributes_could_not_be_read)
{
    Attributes attributes(dir);
    sys_two_file_systems();
    dir.dir("src/d");
    for (const char *name : {"src/a", "src/d/b"})
        dir.file(name, "1");
    attributes.set(dir / "src/a", "user.colour", "blue");
    attributes.set(dir / "src/d", "user.colour", "blue");
    gFopSys.getxattr = [](int, const char *, void *, size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    driver.answers = {1, 1};
    driver.move(dir, {"a", "d"});
    EXPECT_EQ(driver.texts(), "Error writing " + quoted("dst/a") + "\nInput/output error\n" +
                                  "Error writing " + quoted("dst/d") + "\nInput/output error\n");
    EXPECT_EQ(dir.all("src"),
              (std::map<std::string, std::string>{{"a", "file 1"}, {"d", "directory"}}));
    EXPECT_EQ(dir.all("dst"),
              (std::map<std::string, std::string>{{"d", "directory"}, {"d/b", "file 1"}}));
}

// An access list as the kernel keeps it: its owner rw, one other user, the group and others r.
std::string access_list(unsigned user, uint16_t allowed)
{
    std::string list("\2\0\0\0", 4);
    auto add = [&](uint16_t tag, uint16_t bits, uint32_t id) {
        list.append(reinterpret_cast<const char *>(&tag), 2);
        list.append(reinterpret_cast<const char *>(&bits), 2);
        list.append(reinterpret_cast<const char *>(&id), 4);
    };
    add(0x01, 6, ~0u);        // the owner
    add(0x02, allowed, user); // the one user
    add(0x04, 4, ~0u);        // the group
    add(0x10, allowed, ~0u);  // the most that any but the owner gets
    add(0x20, 4, ~0u);        // everybody else
    return list;
}
constexpr char ACCESS[] = "system.posix_acl_access";
constexpr char INHERITED[] = "system.posix_acl_default";

TEST_F(FopLike, access_lists_arrive)
{
    Attributes attributes(dir);
    dir.dir("src/d");
    dir.file("src/d/a", "1");
    attributes.set(dir / "src/d/a", ACCESS, access_list(1234, 4));
    attributes.set(dir / "src/d", ACCESS, access_list(1234, 4));
    attributes.set(dir / "src/d", INHERITED, access_list(1235, 4));
    driver.copy(dir, {"d"});
    EXPECT_EQ(attributes.get(dir / "dst/d/a", ACCESS), access_list(1234, 4));
    EXPECT_EQ(attributes.get(dir / "dst/d", ACCESS), access_list(1234, 4));
    EXPECT_EQ(attributes.get(dir / "dst/d", INHERITED), access_list(1235, 4));
    EXPECT_EQ(dir.status("dst/d").st_mode, dir.status("src/d").st_mode);
}

TEST_F(FopLike, an_overwritten_file_keeps_its_access_list)
{
    Attributes attributes(dir);
    dir.file("src/a", "new");
    dir.file("dst/a", "old");
    attributes.set(dir / "src/a", ACCESS, access_list(1234, 6));
    attributes.set(dir / "dst/a", ACCESS, access_list(1235, 4));
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("dst/a"), "new");
    EXPECT_EQ(attributes.get(dir / "dst/a", ACCESS), access_list(1235, 4));
}

TEST_F(FopLike, holes_stay_holes)
{
    int fd = ::open((dir / "src/a").c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(::pwrite(fd, "begin", 5, 0), 5);
    ASSERT_EQ(::pwrite(fd, "middle", 6, 4 << 20), 6);
    ASSERT_EQ(::ftruncate(fd, 9 << 20), 0);
    ::close(fd);
    driver.copy(dir, {"a"});
    struct stat copy = dir.status("dst/a");
    EXPECT_EQ(copy.st_size, 9 << 20);
    EXPECT_LT(copy.st_blocks * 512, 1 << 20);
    EXPECT_TRUE(dir.read("dst/a") == dir.read("src/a"));
}

TEST_F(FopLike, holes_stay_holes_also_in_place)
{
    for (off_t begin : {0, 4 << 20}) { // the second begins with one
        int fd = ::open((dir / "src/a").c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
        ASSERT_EQ(::pwrite(fd, "middle", 6, begin), 6);
        ASSERT_EQ(::ftruncate(fd, 9 << 20), 0);
        ::close(fd);
        dir.file("dst/a", std::string(100'000, 'o'));
        ::unlink((dir / "dst/b").c_str());
        ASSERT_EQ(::link((dir / "dst/a").c_str(), (dir / "dst/b").c_str()), 0);
        driver.copy(dir, {"a"}, FOP_OVERWRITE);
        struct stat copy = dir.status("dst/b");
        EXPECT_EQ(copy.st_size, 9 << 20);
        EXPECT_LT(copy.st_blocks * 512, 1 << 20);
        EXPECT_TRUE(dir.read("dst/b") == dir.read("src/a"));
    }
    ASSERT_EQ(::truncate((dir / "src/a").c_str(), 0), 0);
    ASSERT_EQ(::truncate((dir / "src/a").c_str(), 5 << 20), 0);
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_EQ(dir.read("dst/b"), std::string(5 << 20, '\0')) << "nothing but a hole";
}

TEST_F(FopLike, large_files_arrive_by_every_way)
{
    std::string content;
    for (unsigned i = 0; content.size() < (5u << 20); i++)
        content += std::to_string(i * 7919);
    dir.file("src/a", content);
    driver.copy(dir, {"a"});
    EXPECT_TRUE(dir.read("dst/a") == content);
    gFopSys.copy_range = [](int, int, size_t) -> ssize_t {
        errno = EXDEV;
        return -1;
    };
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_TRUE(dir.read("dst/a") == content);
    gFopSys.write = [](int fd, const void *bytes, size_t size) {
        return gFopSysReal.write(fd, bytes, size > 1000 ? size / 2 : size); // short writes
    };
    driver.copy(dir, {"a"}, FOP_OVERWRITE);
    EXPECT_TRUE(dir.read("dst/a") == content);
}

// Files of another user, to whoever runs this.
std::vector<ino_t> sForeign;

void x_make_foreign(struct stat *status)
{
    if (std::find(sForeign.begin(), sForeign.end(), status->st_ino) != sForeign.end())
        status->st_uid = status->st_gid = 1234;
}

TEST_F(FopLike, an_owner_that_cannot_be_set_is_reported_once)
{
    dir.file("src/a", "1");
    dir.file("src/b", "2");
    sForeign = {dir.status("src/a").st_ino, dir.status("src/b").st_ino};
    gFopSys.fstatat = [](int at, const char *path, struct stat *status, int flags) {
        int result = gFopSysReal.fstatat(at, path, status, flags);
        x_make_foreign(status);
        return result;
    };
    gFopSys.fstat = [](int fd, struct stat *status) {
        int result = gFopSysReal.fstat(fd, status);
        x_make_foreign(status);
        return result;
    };
    gFopSys.fchownat = [](int, const char *, uid_t, gid_t, int) {
        errno = EPERM;
        return -1;
    };
    driver.answers = {1};
    driver.copy(dir, {"a", "b"});
    ASSERT_EQ(driver.alerts.size(), 1u);
    EXPECT_EQ(text(0), "Unable to change owner permissions " + quoted("dst/a") + "\n");
    EXPECT_EQ(driver.alerts[0].title, "Copy/Move");
    EXPECT_EQ(driver.alerts[0].labels, (std::vector<std::string>{"&Ignore", "&Abort"}));
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
    EXPECT_TRUE(driver.last_flags & FOP_NO_OWNER);
    driver.answers = {2};
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_EQ(driver.alerts.size(), 2u);
    EXPECT_EQ(driver.n_done, 0) << "ended with the first";
}

int sClones; // how often cloning was asked for

TEST_F(FopLike, a_file_system_that_clones_is_asked_to)
{
    dir.file("src/a", std::string(100'000, 'x'));
    dir.file("src/b", "y");
    dir.file("dst/b", "old");
    sClones = 0;
    gFopSys.clone = [](int to, int from) {
        char bytes[4096];
        ssize_t size;
        for (off_t at = 0; (size = ::pread(from, bytes, sizeof bytes, at)) > 0; at += size)
            EXPECT_EQ(::pwrite(to, bytes, static_cast<size_t>(size), at), size);
        sClones++;
        return 0;
    };
    gFopSys.read = [](int, void *, size_t) -> ssize_t { std::abort(); };
    gFopSys.copy_range = [](int, int, size_t) -> ssize_t { std::abort(); };
    driver.copy(dir, {"a", "b"}, FOP_OVERWRITE);
    EXPECT_EQ(sClones, 2);
    EXPECT_TRUE(dir.all("dst") == dir.all("src"));
}

TEST_F(FopLike, one_that_does_not_is_asked_once)
{
    for (const char *name : {"src/a", "src/b", "src/c"})
        dir.file(name, name);
    sClones = 0;
    gFopSys.clone = [](int, int) {
        sClones++;
        errno = EOPNOTSUPP;
        return -1;
    };
    driver.copy(dir, {"a", "b", "c"});
    EXPECT_EQ(sClones, 1);
    EXPECT_EQ(dir.all("dst"), dir.all("src"));
}

TEST_F(FopLike, what_is_written_behind_the_last_hole_meanwhile_is_no_hole)
{
    static std::string sSource;
    sSource = dir / "src/a";
    int fd = ::open(sSource.c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(::pwrite(fd, "begin", 5, 0), 5);
    ASSERT_EQ(::ftruncate(fd, 1 << 20), 0);
    ::close(fd);
    std::string before = dir.read("src/a");
    gFopSys.lseek = [](int from, off_t offset, int whence) {
        off_t at = gFopSysReal.lseek(from, offset, whence);
        if (whence == SEEK_DATA && at == -1) { // the end was just found: now it grows
            int growing = ::open(sSource.c_str(), O_WRONLY | O_APPEND);
            EXPECT_EQ(::write(growing, "tail", 4), 4);
            ::close(growing);
            errno = ENXIO;
        }
        return at;
    };
    driver.copy(dir, {"a"});
    EXPECT_TRUE(dir.read("dst/a") == before);
}

TEST_F(FopLike, a_file_that_shrinks_leaves_no_empty_tail)
{
    static std::string sSource;
    sSource = dir / "src/a";
    dir.file("src/a", std::string(300'000, 'x'));
    gFopSys.copy_range = [](int, int, size_t) -> ssize_t {
        errno = EXDEV;
        return -1;
    };
    gFopSys.write = [](int fd, const void *bytes, size_t size) {
        EXPECT_EQ(::truncate(sSource.c_str(), 1000), 0);
        return gFopSysReal.write(fd, bytes, size);
    };
    driver.copy(dir, {"a"});
    std::string copied = dir.read("dst/a");
    EXPECT_EQ(copied.find_first_not_of('x'), std::string::npos);
    EXPECT_LT(copied.size(), 300'000u);
}

} // namespace
} // namespace tav
