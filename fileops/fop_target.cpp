// Where the content of a regular file goes until it is complete, so that nothing half-written ever
// stands under a real name: a file without a name, else a hidden sibling. Only a file that others
// know by other names, or that a link leads to, is written in place.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

bool x_no_unnamed(int error)
{
    return error == EOPNOTSUPP || error == EISDIR || error == EINVAL || error == ENOSYS;
}

int x_open(int dir, const char *name, int flags, mode_t mode)
{
    return fop_retry([&] { return gFopSys.openat(dir, name, flags, mode); });
}

void x_unlink(int dir, const std::string &name)
{
    int error = errno;
    fop_retry([&] { return gFopSys.unlinkat(dir, name.c_str(), 0); });
    errno = error;
}

// Takes the name from the target again, unless somebody gave it to another file meanwhile.
void x_unname(const FopItem &item, const FopTarget &target)
{
    const int error = errno;
    struct stat there;
    if (gFopSys.fstatat(item.to_dir, item.to, &there, AT_SYMLINK_NOFOLLOW) == 0 &&
        fop_id(there) == fop_id(target.made))
        x_unlink(item.to_dir, item.to);
    errno = error;
}

// A new file beside the destination.
int x_open_new(const FopItem &item, FopTarget &target)
{
    mode_t mode = item.status.st_mode & 07777;
    bool &no_unnamed = item.job->dirs->no_unnamed;
    if (!no_unnamed) {
        target.way = FopTarget::UNNAMED;
        target.fd = x_open(item.to_dir, ".", O_TMPFILE | O_WRONLY, mode);
        no_unnamed = target.fd == -1 && x_no_unnamed(errno);
    }
    if (no_unnamed) {
        target.way = FopTarget::SIBLING;
        target.fd = fop_make_temp(item.job, item.to_dir, target.temp, [&](const char *name) {
            return gFopSys.openat(item.to_dir, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW,
                                  mode);
        });
    }
    return target.fd != -1 && gFopSys.fstat(target.fd, &target.made) == 0 ? 0 : -1;
}

// Opens the existing file as overwriting it would: what may not be written is not replaced either.
int x_open_old(const FopItem &item, FopTarget &target)
{
    mode_t mode = item.dest_status.st_mode;
    if (!S_ISREG(mode)) {
        errno = S_ISDIR(mode) ? EISDIR : ENXIO; // a FIFO or device is never opened
        return -1;
    }
    struct stat name;
    if (gFopSys.fstatat(item.to_dir, item.to, &name, AT_SYMLINK_NOFOLLOW) == -1)
        return -1;
    target.through_link = S_ISLNK(name.st_mode);
    target.old_fd = x_open(item.to_dir, item.to, O_WRONLY | O_NONBLOCK | O_NOCTTY, 0);
    if (target.old_fd == -1 || gFopSys.fstat(target.old_fd, &target.old) == -1)
        return -1;
    if (S_ISREG(target.old.st_mode))
        return 0;
    errno = ENXIO;
    return -1;
}

// Somebody else's file cannot be put back as theirs.
bool x_is_own(const struct stat &status)
{
    uid_t self = ::geteuid();
    return self == 0 || status.st_uid == self;
}

bool x_no_sibling(int error) { return error == EACCES || error == EPERM || error == ENAMETOOLONG; }

} // namespace

int fop_target_open(const FopItem &item, FopTarget &target)
{
    if (item.to_dir == -1) {
        errno = item.to_error;
        return -1;
    }
    if (!item.exists)
        return x_open_new(item, target);
    if (x_open_old(item, target) == -1)
        return -1;
    bool in_place = target.through_link || target.old.st_nlink > 1 || !x_is_own(target.old);
    if (!in_place) {
        target.replace = true;
        if (x_open_new(item, target) == 0)
            return 0;
        if (target.fd != -1 || !x_no_sibling(errno))
            return -1;
    }
    target.way = FopTarget::IN_PLACE;
    target.replace = false;
    target.fd = target.old_fd;
    target.old_fd = -1;
    target.made = target.old;
    return 0;
}

namespace {

// Puts the hidden file in its place, without replacing anything unless that was allowed.
int x_rename(const FopItem &item, FopTarget &target)
{
    auto rename = [&](unsigned flags) {
        return fop_retry([&] {
            return gFopSys.renameat(item.to_dir, target.temp.c_str(), item.to_dir, item.to, flags);
        });
    };
    int result = rename(target.replace ? 0 : RENAME_NOREPLACE);
    if (result == -1 && !target.replace && (errno == EINVAL || errno == ENOSYS)) {
        struct stat there;
        if (gFopSys.fstatat(item.to_dir, item.to, &there, AT_SYMLINK_NOFOLLOW) == 0)
            errno = EEXIST;
        else if (errno == ENOENT)
            result = rename(0);
    }
    if (result == 0)
        target.temp.clear();
    return result;
}

// Closes the file; what was written may turn out to be lost only here.
int x_finish(FopTarget &target)
{
    int fd = target.fd;
    target.fd = -1;
    return fd == -1 ? 0 : gFopSys.close(fd);
}

} // namespace

int fop_target_commit(const FopItem &item, FopTarget &target)
{
    if (target.way == FopTarget::IN_PLACE)
        return x_finish(target);
    if (target.way == FopTarget::UNNAMED && !target.replace) {
        if (fop_retry([&] { return gFopSys.linkfd(target.fd, item.to_dir, item.to); }) == -1)
            return -1;
        if (x_finish(target) == 0)
            return 0;
        x_unname(item, target);
        return -1;
    }
    auto link = [&](const char *name) { return gFopSys.linkfd(target.fd, item.to_dir, name); };
    if (target.temp.empty() && fop_make_temp(item.job, item.to_dir, target.temp, link) == -1)
        return -1;
    return x_finish(target) == -1 ? -1 : x_rename(item, target);
}

void fop_target_drop(const FopItem &item, FopTarget &target)
{
    if (target.way == FopTarget::IN_PLACE && target.wrote) {
        // The name goes with its half content; a link is kept, and only the half content goes.
        if (target.through_link && target.fd != -1)
            (void)gFopSys.ftruncate(target.fd, 0);
        else
            x_unname(item, target);
    }
    if (!target.temp.empty())
        x_unlink(item.to_dir, target.temp);
    target.temp.clear();
    fop_close(target.fd);
    fop_close(target.old_fd);
    target.fd = target.old_fd = -1;
}

} // namespace tav
