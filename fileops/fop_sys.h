// The system calls of the job engine, in one table: tests replace entries to make the Nth call
// fail. Each entry is the call of that name, with its errno. Set before a job starts, read by
// workers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <sys/stat.h>
#include <sys/types.h>

namespace tav {

struct FopSys {
    int (*openat)(int dir, const char *path, int flags, mode_t mode);
    int (*close)(int fd);
    int (*fstatat)(int dir, const char *path, struct stat *status, int flags);
    int (*fstat)(int fd, struct stat *status);
    ssize_t (*getdents)(int fd, void *buffer, size_t size);
    ssize_t (*read)(int fd, void *buffer, size_t size);
    ssize_t (*write)(int fd, const void *buffer, size_t size);
    ssize_t (*copy_range)(int from, int to, size_t size);
    int (*clone)(int to, int from);
    off_t (*lseek)(int fd, off_t offset, int whence);
    int (*ftruncate)(int fd, off_t size);
    int (*mkdirat)(int dir, const char *path, mode_t mode);
    int (*mkfifoat)(int dir, const char *path, mode_t mode);
    ssize_t (*readlinkat)(int dir, const char *path, char *buffer, size_t size);
    int (*symlinkat)(const char *target, int dir, const char *path);
    int (*linkfd)(int fd, int dir, const char *path); // gives an unnamed file its name
    int (*renameat)(int from_dir, const char *from, int to_dir, const char *to, unsigned flags);
    int (*unlinkat)(int dir, const char *path, int flags);
    int (*fchmod)(int fd, mode_t mode);
    int (*fchmodat)(int dir, const char *path, mode_t mode);
    int (*fchownat)(int dir, const char *path, uid_t uid, gid_t gid, int flags);
    int (*utimensat)(int dir, const char *path, const struct timespec times[2], int flags);
    // Extended attributes; fd may be O_PATH.
    ssize_t (*listxattr)(int fd, char *list, size_t size);
    ssize_t (*getxattr)(int fd, const char *name, void *value, size_t size);
    int (*setxattr)(int fd, const char *name, const void *value, size_t size);
    int (*syncfs)(int fd);
    void (*sync)();
    void (*delay)(unsigned milliseconds);
    void (*now)(clockid_t clock, struct timespec *time);
    void *(*alloc)(size_t size); // what free takes, or null
};

extern FopSys gFopSys;
extern const FopSys gFopSysReal; // the table as the program starts with it

// Closes what cannot hold unwritten data, keeping errno; nothing for -1.
void fop_close(int fd);

// One entry of what getdents filled a buffer with.
struct FopEntry {
    const char *name; // in the buffer
    uint8_t type;     // DT_REG and so on, DT_UNKNOWN where the file system does not say
};

// The entry that begins at that byte of the buffer; at moves on to the next one.
FopEntry fop_sys_entry(const char *buffer, ssize_t &at);

// "." and ".." are no entries.
bool fop_sys_is_dots(const char *name);

} // namespace tav
