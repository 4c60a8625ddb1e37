// A disk that does not answer, for a whole program: preloaded, it lets every question about the
// directory that HANG_PATH names, or about anything below, wait as long as the FIFO is there that
// HANG_UNTIL names and nobody writes to it.
#undef _FILE_OFFSET_BITS // each of the calls below under its own name
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

void x_wait(const char *path)
{
    const char *hangs = std::getenv("HANG_PATH");
    const char *until = std::getenv("HANG_UNTIL");
    if (path == nullptr || hangs == nullptr || until == nullptr ||
        std::strncmp(path, hangs, std::strlen(hangs)) != 0)
        return;
    const long file = syscall(SYS_openat, AT_FDCWD, until, O_RDONLY | O_CLOEXEC);
    if (file >= 0)
        close(static_cast<int>(file));
}

template <typename Call>
Call *x_next(const char *name)
{
    return reinterpret_cast<Call *>(dlsym(RTLD_NEXT, name));
}

// The mode of a call that may create a file.
#define MODE_OF(flags)                                                                             \
    va_list rest;                                                                                  \
    va_start(rest, flags);                                                                         \
    const mode_t mode = (flags) & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;                \
    va_end(rest)

} // namespace

extern "C" {

DIR *opendir(const char *path)
{
    x_wait(path);
    return x_next<DIR *(const char *)>("opendir")(path);
}

int access(const char *path, int mode)
{
    x_wait(path);
    return x_next<int(const char *, int)>("access")(path, mode);
}

int stat64(const char *path, struct stat64 *out)
{
    x_wait(path);
    return x_next<int(const char *, struct stat64 *)>("stat64")(path, out);
}

int lstat64(const char *path, struct stat64 *out)
{
    x_wait(path);
    return x_next<int(const char *, struct stat64 *)>("lstat64")(path, out);
}

int open64(const char *path, int flags, ...)
{
    MODE_OF(flags);
    x_wait(path);
    return x_next<int(const char *, int, ...)>("open64")(path, flags, mode);
}

int openat64(int directory, const char *path, int flags, ...)
{
    MODE_OF(flags);
    x_wait(path);
    return x_next<int(int, const char *, int, ...)>("openat64")(directory, path, flags, mode);
}

} // extern "C"
