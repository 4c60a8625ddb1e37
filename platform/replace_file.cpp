// Replacing a file whole: a new one beside it, synced, renamed over it, and the directory synced.
// What is no regular file cannot be replaced and is written to as it is. A process that is killed
// before it renames leaves its new file behind; the next one that replaces a file there removes it.
#include "platform/replace_file.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav {

ReplaceCalls gReplaceCalls = {::write, ::fsync, ::rename};

namespace {

constexpr int LINK_LIMIT = 40; // links followed before they count as a circle
constexpr int NAME_TRIES = 100;
constexpr time_t LEFT_AFTER = 60; // seconds; a younger file may be that of a process elsewhere

// Closes and removes without touching errno; returns -1.
int x_give_up(int fd, const char *temporary)
{
    int error = errno;
    if (fd >= 0)
        close(fd);
    if (temporary)
        unlink(temporary);
    errno = error;
    return -1;
}

std::string x_directory(const std::string &path)
{
    size_t slash = path.rfind('/');
    if (slash == path.npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Follows the links at the end of path to where they lead, whether that exists or not. 0 or -1.
int x_follow(std::string &path)
{
    for (int i = 0; i < LINK_LIMIT; i++) {
        char target[4096];
        ssize_t size = readlink(path.c_str(), target, sizeof target);
        if (size < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : -1;
        if (size == static_cast<ssize_t>(sizeof target)) {
            errno = ENAMETOOLONG;
            return -1;
        }
        std::string next(target, static_cast<size_t>(size));
        path = next.starts_with('/') ? next : x_directory(path) + "/" + next;
    }
    errno = ELOOP;
    return -1;
}

int x_write_all(int fd, std::string_view content)
{
    while (!content.empty()) {
        ssize_t written = gReplaceCalls.write(fd, content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written == 0)
                errno = EIO;
            return -1;
        }
        content.remove_prefix(static_cast<size_t>(written));
    }
    return 0;
}

// Syncs what can be synced; some file systems know no such thing.
int x_sync(int fd)
{
    if (gReplaceCalls.fsync(fd) == 0 || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)
        return 0;
    return -1;
}

std::string x_temporary_name(long maker, unsigned number)
{
    return ".tav-" + std::to_string(maker) + "-" + std::to_string(number) + ".new";
}

// Whether name is a temporary file's whose process is gone.
bool x_is_left(int dir, const char *name, time_t now)
{
    long maker = 0;
    unsigned number = 0;
    struct stat status;
    return sscanf(name, ".tav-%ld-%u", &maker, &number) == 2 && maker > 0 &&
           name == x_temporary_name(maker, number) && kill(static_cast<pid_t>(maker), 0) != 0 &&
           errno == ESRCH && fstatat(dir, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISREG(status.st_mode) && now - status.st_mtime > LEFT_AFTER;
}

// Removes what killed processes left in the directory. Takes the descriptor.
void x_sweep(int fd)
{
    DIR *dir = fdopendir(fd);
    if (!dir) {
        close(fd);
        return;
    }
    const time_t now = time(nullptr);
    while (const dirent *entry = readdir(dir))
        if (x_is_left(dirfd(dir), entry->d_name, now))
            unlinkat(dirfd(dir), entry->d_name, 0);
    closedir(dir);
}

// A new file in the directory, its name in path. A descriptor or -1.
int x_create_beside(const std::string &directory, std::string &path, mode_t mode)
{
    static std::atomic<unsigned> sNumber{0};
    for (int i = 0; i < NAME_TRIES; i++) {
        path = directory + "/" + x_temporary_name(getpid(), sNumber++);
        int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

// Gives the new file the owner and mode of the old one; another's ownership only where that is
// allowed.
int x_take_over(int fd, const struct stat &old)
{
    struct stat mine;
    if (fstat(fd, &mine) != 0)
        return -1;
    if (mine.st_uid != old.st_uid || mine.st_gid != old.st_gid) {
        int ignored = fchown(fd, old.st_uid, old.st_gid);
        (void)ignored;
    }
    return fchmod(fd, old.st_mode & 07777);
}

int x_replace(const std::string &path, const struct stat *old, std::string_view content)
{
    std::string directory = x_directory(path);
    std::string temporary;
    int fd = x_create_beside(directory, temporary, old ? 0600 : 0666);
    if (fd < 0)
        return -1;
    if ((old && x_take_over(fd, *old) != 0) || x_write_all(fd, content) != 0 || x_sync(fd) != 0)
        return x_give_up(fd, temporary.c_str());
    if (close(fd) != 0 || gReplaceCalls.rename(temporary.c_str(), path.c_str()) != 0)
        return x_give_up(-1, temporary.c_str());
    int dir = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) { // an unreadable one cannot be synced; the file is in place all the same
        x_sync(dir);
        x_sweep(dir);
    }
    return 0;
}

} // namespace

int replace_file_write(const char *path, std::string_view content)
{
    std::string target = path;
    if (x_follow(target) != 0)
        return -1;
    int fd = open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return errno == ENOENT ? x_replace(target, nullptr, content) : -1;
    struct stat old;
    if (fstat(fd, &old) != 0)
        return x_give_up(fd, nullptr);
    if (!S_ISREG(old.st_mode)) {
        if (x_write_all(fd, content) != 0)
            return x_give_up(fd, nullptr);
        return close(fd);
    }
    close(fd);
    return x_replace(target, &old, content);
}

int replace_file_read(const char *path, std::string &content, size_t limit)
{
    content.clear();
    int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0)
        return -1;
    char buffer[16384];
    for (;;) {
        ssize_t size = read(fd, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return x_give_up(fd, nullptr);
        if (size == 0)
            break;
        if (content.size() + static_cast<size_t>(size) > limit) {
            errno = EFBIG;
            return x_give_up(fd, nullptr);
        }
        content.append(buffer, static_cast<size_t>(size));
    }
    close(fd);
    return 0;
}

} // namespace tav
