// Directories: made (or opened for filling) when they are met, given their mode, times and owner
// when their contents are there.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

// The group that holds the contents of a directory, -1 when it has none. Groups stand in the order
// in which the copy meets their directories.
int x_child_group(const FopItem &item)
{
    FileOp *job = item.job;
    const char *name = job->groups[item.group]->names[item.item];
    for (int g = job->dirs->next_child; g < job->n_groups; g++) {
        const DirGroup &child = *job->groups[g];
        if (child.parent > item.group)
            break;
        if (child.parent == item.group && child.dir == name) {
            job->dirs->next_child = g + 1;
            return g;
        }
    }
    return -1;
}

// A directory behind an O_PATH descriptor; no name that could have been swapped is looked up again.
std::string x_self(int fd)
{
    char path[40];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    return path;
}

int x_set_mode(int fd, mode_t mode)
{
    return fop_retry([&] { return gFopSys.fchmodat(AT_FDCWD, x_self(fd).c_str(), mode & 07777); });
}

bool x_set_owner(int fd, const struct stat &want)
{
    struct stat made;
    if (gFopSys.fstat(fd, &made) == 0 && fop_has_owner(made, want))
        return true;
    return fop_retry([&] {
               return gFopSys.fchownat(fd, "", want.st_uid, want.st_gid, AT_EMPTY_PATH);
           }) == 0;
}

// Times and owner, as at the end of every item.
FopCopied x_set_look(const FopItem &item, int fd)
{
    timespec times[2] = {item.status.st_atim, item.status.st_mtim};
    bool owner = x_set_owner(fd, item.status);
    if (fop_retry([&] { return gFopSys.utimensat(AT_FDCWD, x_self(fd).c_str(), times, 0); }) ==
            -1 &&
        !fop_cannot_hold(errno))
        return fop_write_failed(item, errno);
    return owner ? FOP_COPIED : fop_ask_owner(item);
}

// The destination directory after it was made or found, or -1.
int x_open(const FopItem &item)
{
    // A selected item may stand where a link to a directory is; below, no link is followed.
    int flags = O_PATH | O_DIRECTORY | (item.group == 0 ? 0 : O_NOFOLLOW);
    return fop_retry([&] { return gFopSys.openat(item.to_dir, item.to, flags, 0); });
}

// The directory that was copied to is not where it was.
bool x_is_gone(int error)
{
    return error == ENOENT || error == ESTALE || error == ENOTDIR || error == ELOOP;
}

// Where the contents go, when there are any: their directory is open for filling until they are
// there. One whose contents could not be read gets its final mode now.
void x_begin_filling(const FopItem &item, int fd, const struct stat &status)
{
    FileOp *job = item.job;
    if (status.st_dev != job->dirs->dest_dev)
        job->dirs->other_fs = true;
    int child = x_child_group(item);
    if (child == -1) {
        x_set_mode(fd, item.status.st_mode);
        return;
    }
    if (item.exists)
        x_set_mode(fd, 0777);
    job->groups[child]->dest_id = fop_id(status);
    job->groups[child]->mode = item.status.st_mode;
    job->groups[child]->filling = true;
}

} // namespace

FopCopied fop_copy_directory(FopItem &item)
{
    FileOp *job = item.job;
    const char *path = item.dest.c_str();
    if (item.exists && !S_ISDIR(item.dest_status.st_mode))
        return fop_ask_error(job, "The '%s' is not a directory\n", path);
    bool made = !item.exists && item.to_dir != -1 &&
                fop_retry([&] { return gFopSys.mkdirat(item.to_dir, item.to, 0777); }) == 0;
    if (!item.exists && !made)
        return fop_ask_error(job, "Unable to make '%s' directory\n", path);
    int fd = x_open(item);
    struct stat status;
    if (fd == -1 || gFopSys.fstat(fd, &status) == -1) {
        bool is_link = fd == -1 && (errno == ENOTDIR || errno == ELOOP);
        fop_close(fd);
        return is_link ? fop_ask_error(job, "The '%s' is not a directory\n", path)
                       : fop_ask_error(job, "Unable to make '%s' directory\n", path);
    }
    x_begin_filling(item, fd, status);
    FopCopied result = x_set_look(item, fd);
    gFopSys.close(fd);
    return result;
}

FopCopied fop_finish_directory(FopItem &item)
{
    FileOp *job = item.job;
    int from = fop_dir(job, FOP_SOURCE, item.group);
    int to = fop_dir(job, FOP_DEST, item.group);
    if (to == -1) // taken away meanwhile, there is nothing to finish
        return x_is_gone(errno) ? FOP_COPIED : fop_write_failed(item, errno);
    int error = from != -1 && fop_copy_xattrs(from, to, from) == -1 ? errno : 0;
    if (x_set_mode(to, item.status.st_mode) == -1 && !fop_cannot_hold(errno))
        error = errno;
    else
        job->groups[item.group]->filling = false;
    if (error != 0)
        return fop_write_failed(item, error);
    return x_set_look(item, to);
}

void fop_finish_modes(FileOp *job)
{
    for (int g = job->n_groups; g-- > 1;) {
        DirGroup &group = *job->groups[g];
        int to = group.filling ? fop_dir(job, FOP_DEST, g) : -1;
        if (to != -1)
            x_set_mode(to, group.mode);
        group.filling = false;
    }
}

} // namespace tav
