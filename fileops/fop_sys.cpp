// The system calls of the job engine: see fop_sys.h.
#include "fileops/fop_sys.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tav {
namespace {

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

int x_linkfd(int fd, int dir, const char *path)
{
    if (::linkat(fd, "", dir, path, AT_EMPTY_PATH) == 0)
        return 0;
    if (errno != ENOENT && errno != EPERM)
        return -1;
    // Without the capability that the short way wants, the descriptor's name in /proc does the
    // same.
    char self[40];
    std::snprintf(self, sizeof self, "/proc/self/fd/%d", fd);
    return ::linkat(AT_FDCWD, self, dir, path, AT_SYMLINK_FOLLOW);
}

int x_renameat(int from_dir, const char *from, int to_dir, const char *to, unsigned flags)
{
    return ::renameat2(from_dir, from, to_dir, to, flags);
}

int x_fchmodat(int dir, const char *path, mode_t mode) { return ::fchmodat(dir, path, mode, 0); }

void x_delay(unsigned milliseconds)
{
    timespec left{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

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
    .syncfs = ::syncfs,
    .delay = x_delay,
};

FopSys gFopSys = gFopSysReal;

} // namespace tav
