// File systems of a test's own, and extended attributes where there are none.
#include "fop_driver.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tav {
namespace {

constexpr int NO_MOUNT = 77; // what a child says that could have none

bool x_write(const char *path, const std::string &text)
{
    int fd = ::open(path, O_WRONLY);
    bool all = fd != -1 && ::write(fd, text.data(), text.size()) == ssize_t(text.size());
    ::close(fd);
    return all;
}

// As the superuser of a space of its own; else, for who is one already, with mounts of its own
// only.
bool x_enter()
{
    std::string uid = std::to_string(::geteuid()), gid = std::to_string(::getegid());
    bool superuser = ::geteuid() == 0;
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) {
        x_write("/proc/self/setgroups", "deny");
        return x_write("/proc/self/uid_map", "0 " + uid + " 1") &&
               x_write("/proc/self/gid_map", "0 " + gid + " 1");
    }
    return superuser && ::unshare(CLONE_NEWNS) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

} // namespace

std::optional<bool> own_mounts(const std::function<bool()> &prepare,
                               const std::function<bool()> &body)
{
    pid_t child = ::fork();
    if (child == 0) {
        if (!x_enter() || !prepare())
            ::_exit(NO_MOUNT);
        ::_exit(body() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == NO_MOUNT)
        return std::nullopt;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

namespace {

using FileId = std::pair<dev_t, ino_t>;
std::map<FileId, std::map<std::string, std::string>> sMadeUp;
bool sReal;

FileId x_id(const struct stat &status) { return {status.st_dev, status.st_ino}; }

std::map<std::string, std::string> &x_of(int fd)
{
    struct stat status {};
    ::fstat(fd, &status);
    return sMadeUp[x_id(status)];
}

ssize_t x_give(const std::string &bytes, void *buffer, size_t size)
{
    if (size > 0 && size < bytes.size()) {
        errno = ERANGE;
        return -1;
    }
    if (size > 0)
        std::memcpy(buffer, bytes.data(), bytes.size());
    return static_cast<ssize_t>(bytes.size());
}

ssize_t x_list(int fd, char *list, size_t size)
{
    std::string names;
    for (auto &[name, value] : x_of(fd))
        names += name + '\0';
    return x_give(names, list, size);
}

ssize_t x_get(int fd, const char *name, void *value, size_t size)
{
    auto &all = x_of(fd);
    auto found = all.find(name);
    if (found != all.end())
        return x_give(found->second, value, size);
    errno = ENODATA;
    return -1;
}

int x_set(int fd, const char *name, const void *value, size_t size)
{
    x_of(fd)[name] = std::string(static_cast<const char *>(value), size);
    return 0;
}

} // namespace

Attributes::Attributes(const JobDir &dir)
{
    dir.file("probe", "");
    std::string probe = dir / "probe";
    sReal = ::setxattr(probe.c_str(), "user.probe", "1", 1, 0) == 0;
    ::unlink(probe.c_str());
    if (sReal)
        return;
    gFopSys.listxattr = x_list;
    gFopSys.getxattr = x_get;
    gFopSys.setxattr = x_set;
}

Attributes::~Attributes() { sMadeUp.clear(); }

void Attributes::set(const std::string &path, const std::string &name,
                     const std::string &value) const
{
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    if (sReal)
        ASSERT_EQ(::setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0), 0);
    else
        sMadeUp[x_id(status)][name] = value;
}

std::string Attributes::get(const std::string &path, const std::string &name) const
{
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    if (!sReal)
        return sMadeUp[x_id(status)][name];
    char value[1024];
    ssize_t length = ::getxattr(path.c_str(), name.c_str(), value, sizeof value);
    return length < 0 ? "" : std::string(value, static_cast<size_t>(length));
}

} // namespace tav
