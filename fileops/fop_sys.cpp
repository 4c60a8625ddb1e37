// The system calls of the job engine: see fop_sys.h.
#include "fileops/fop_sys.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tav {
namespace {

// The name of a descriptor, for calls that want a path.
struct Self {
    char path[40];
    explicit Self(int fd) { std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd); }
};

// An entry of a directory as the kernel hands it out.
struct Dirent {
    uint64_t ino;
    int64_t offset;
    uint16_t length;
    uint8_t type;
    char name[5]; // and on, to its NUL
};
static_assert(offsetof(Dirent, name) == 19);

int x_openat(int dir, const char *path, int flags, mode_t mode)
{
    return ::openat(dir, path, flags | O_CLOEXEC, mode);
}

int x_fstatat(int dir, const char *path, struct stat *status, int flags)
{
    return ::fstatat(dir, path, status, flags);
}

int x_fstat(int fd, struct stat *status) { return ::fstat(fd, status); }

ssize_t x_getdents(int fd, void *buffer, size_t size)
{
    return ::syscall(SYS_getdents64, fd, buffer, size);
}

ssize_t x_copy_range(int from, int to, size_t size)
{
    return ::copy_file_range(from, nullptr, to, nullptr, size, 0);
}

int x_clone(int to, int from) { return ::ioctl(to, FICLONE, from); }

int x_mkfifoat(int dir, const char *path, mode_t mode) { return ::mkfifoat(dir, path, mode); }

// Without the capability that the short way wants, the descriptor's own name does the same.
int x_linkfd(int fd, int dir, const char *path)
{
    if (::linkat(fd, "", dir, path, AT_EMPTY_PATH) == 0)
        return 0;
    if (errno != ENOENT && errno != EPERM)
        return -1;
    return ::linkat(AT_FDCWD, Self(fd).path, dir, path, AT_SYMLINK_FOLLOW);
}

int x_renameat(int from_dir, const char *from, int to_dir, const char *to, unsigned flags)
{
    return ::renameat2(from_dir, from, to_dir, to, flags);
}

int x_fchmodat(int dir, const char *path, mode_t mode) { return ::fchmodat(dir, path, mode, 0); }

// The f-calls do not take an O_PATH descriptor.
ssize_t x_listxattr(int fd, char *list, size_t size)
{
    ssize_t length = ::flistxattr(fd, list, size);
    return length == -1 && errno == EBADF ? ::listxattr(Self(fd).path, list, size) : length;
}

ssize_t x_getxattr(int fd, const char *name, void *value, size_t size)
{
    ssize_t length = ::fgetxattr(fd, name, value, size);
    return length == -1 && errno == EBADF ? ::getxattr(Self(fd).path, name, value, size) : length;
}

int x_setxattr(int fd, const char *name, const void *value, size_t size)
{
    int result = ::fsetxattr(fd, name, value, size, 0);
    return result == -1 && errno == EBADF ? ::setxattr(Self(fd).path, name, value, size, 0)
                                          : result;
}

void x_delay(unsigned milliseconds)
{
    timespec left{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

void x_now(clockid_t clock, timespec *time) { (void)::clock_gettime(clock, time); }

} // namespace

const FopSys gFopSysReal = {
    .openat = x_openat,
    .close = ::close,
    .fstatat = x_fstatat,
    .fstat = x_fstat,
    .getdents = x_getdents,
    .read = ::read,
    .write = ::write,
    .copy_range = x_copy_range,
    .clone = x_clone,
    .lseek = ::lseek,
    .ftruncate = ::ftruncate,
    .mkdirat = ::mkdirat,
    .mkfifoat = x_mkfifoat,
    .readlinkat = ::readlinkat,
    .symlinkat = ::symlinkat,
    .linkfd = x_linkfd,
    .renameat = x_renameat,
    .unlinkat = ::unlinkat,
    .fchmod = ::fchmod,
    .fchmodat = x_fchmodat,
    .fchownat = ::fchownat,
    .utimensat = ::utimensat,
    .listxattr = x_listxattr,
    .getxattr = x_getxattr,
    .setxattr = x_setxattr,
    .syncfs = ::syncfs,
    .sync = ::sync,
    .delay = x_delay,
    .now = x_now,
    .alloc = std::malloc,
};

FopSys gFopSys = gFopSysReal;

void fop_close(int fd)
{
    int error = errno;
    if (fd != -1)
        gFopSys.close(fd);
    errno = error;
}

FopEntry fop_sys_entry(const char *buffer, ssize_t &at)
{
    auto *entry = reinterpret_cast<const Dirent *>(buffer + at);
    const char *name = buffer + at + offsetof(Dirent, name);
    at += entry->length;
    return {name, entry->type};
}

bool fop_sys_is_dots(const char *name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace tav
