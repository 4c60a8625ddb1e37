// The copy loop over the file list and, for a move, what follows it: the sources that were copied
// go.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>

namespace tav {
namespace {

// Where the copy loop stopped: that name and all after it were not copied, and no directory from
// that group on was finished.
struct Stop {
    int group;
    int item;
};

// The contents of a directory that could not be made are skipped with it.
void x_skip_group(FileOp *job, int g)
{
    DirGroup &group = *job->groups[g];
    for (int i = 0; i < group.count; i++)
        fop_set_dead(job, g, i);
    job->n_done += group.count;
}

// One name; what is not copied comes off the list. True to go on.
bool x_copy_name(FileOp *job, int g, int i, const std::string &dir)
{
    const char *name = job->groups[g]->names[i];
    FopCopied result = *name ? fop_copy_file(job, g, i, dir) : FOP_SKIPPED;
    if (result == FOP_COPIED)
        fop_item_done(job, dir.c_str(), name);
    else
        fop_set_dead(job, g, i);
    if (result == FOP_END)
        return false;
    job->n_done++;
    return true;
}

// A directory whose copy could not be finished is not copied: a move keeps it.
void x_keep_directory(FileOp *job, int g)
{
    const DirGroup &parent = *job->groups[job->groups[g]->parent];
    for (int i = 0; i < parent.count; i++) {
        if (parent.names[i] == job->groups[g]->dir)
            fop_set_dead(job, job->groups[g]->parent, i);
    }
}

// The directories of the groups from that one on were not finished, so they are not copied either.
// Groups of one directory stand in the order of its names.
void x_keep_unfinished(FileOp *job, int first)
{
    int parent = -1, next = 0;
    for (int g = std::max(first, 1); g < job->n_groups; g++) {
        const DirGroup &group = *job->groups[g];
        if (group.parent > first)
            break; // its names come off the list anyway
        if (group.parent != parent)
            next = 0;
        parent = group.parent;
        const DirGroup &names = *job->groups[parent];
        int i = next;
        while (i < names.count && names.names[i] != group.dir)
            i++;
        if (i == names.count)
            continue; // it is off the list
        fop_set_dead(job, parent, i);
        next = i + 1;
    }
}

// The names of one group, then its directory: true to go on.
bool x_copy_group(FileOp *job, int g, Stop &stop)
{
    std::string dir;
    fop_group_dir(job, g, dir);
    for (int i = 0; i < job->groups[g]->count; i++) {
        stop = {g, i};
        if (fop_stopped(job) || !x_copy_name(job, g, i, dir))
            return false;
    }
    stop = {g, job->groups[g]->count};
    if (fop_stopped(job))
        return false;
    FopCopied finished = g == 0 ? FOP_COPIED : fop_copy_file(job, g, -1, dir);
    if (finished == FOP_SKIPPED)
        x_keep_directory(job, g);
    return finished != FOP_END;
}

// A move keeps a stamp of each copied file: 0, or -1.
int x_make_stamps(FileOp *job, int g)
{
    DirGroup &group = *job->groups[g];
    if (job->op != FOP_MOVE)
        return 0;
    size_t size = static_cast<size_t>(group.count) * sizeof(uint64_t);
    group.stamps = static_cast<uint64_t *>(fop_alloc(job, size));
    if (!group.stamps) {
        fop_ENOMEM(job);
        return -1;
    }
    std::memset(group.stamps, 0, size);
    return 0;
}

Stop x_copy_all(FileOp *job)
{
    for (int g = 0; g < job->n_groups; g++) {
        if (g > 0 && job->groups[g]->dest_id == FopId{}) {
            x_skip_group(job, g);
            continue;
        }
        Stop stop{g, 0};
        if (x_make_stamps(job, g) != 0 || !x_copy_group(job, g, stop))
            return stop;
    }
    return {job->n_groups, 0};
}

bool x_any_live(const FileOp *job)
{
    for (int g = 0; g < job->n_groups; g++) {
        for (int i = 0; i < job->groups[g]->count; i++) {
            if (job->groups[g]->names[i][0])
                return true;
        }
    }
    return false;
}

// What a move's copies will be put on the disk by, or -1: open before the first byte is written,
// since a descriptor tells only of the errors that came after it, or that nobody was told of.
int x_open_sync(FileOp *job)
{
    int root = job->op == FOP_MOVE ? fop_dir(job, FOP_DEST, 0) : -1;
    if (root == -1)
        return -1;
    return fop_retry([&] { return gFopSys.openat(root, ".", O_RDONLY | O_DIRECTORY, 0); });
}

// Puts the copies on the disk before the first source is removed: 0, or -1 when that is not sure.
int x_sync_dest(FileOp *job, int fd)
{
    if (fd == -1 || job->dirs->other_fs)
        gFopSys.sync(); // a directory that may not be read, or copies on several file systems
    return fd == -1 ? 0 : fop_retry([&] { return gFopSys.syncfs(fd); });
}

// The second half of a move: removes what was copied.
void x_remove_sources(FileOp *job, const Stop &stop, int sync_fd)
{
    x_keep_unfinished(job, stop.group);
    for (int g = stop.group; g < job->n_groups; g++) {
        for (int i = g == stop.group ? stop.item : 0; i < job->groups[g]->count; i++)
            fop_set_dead(job, g, i);
    }
    if (!x_any_live(job))
        return;
    if (x_sync_dest(job, sync_fd) == -1) {
        fop_ask_error(job, "Error writing '%s'\n%s\n", job->dest.c_str(), std::strerror(errno));
        return; // with either answer every source stays
    }
    fop_delete_files(job, 0);
}

} // namespace

void fop_copy_files(FileOp *job)
{
    struct stat root;
    int fd = fop_dir(job, FOP_DEST, 0);
    if (fd != -1 && gFopSys.fstat(fd, &root) == 0)
        job->dirs->dest_dev = root.st_dev;
    const int sync_fd = x_open_sync(job);
    Stop stop = x_copy_all(job);
    fop_finish_modes(job);
    if (job->op == FOP_MOVE)
        x_remove_sources(job, stop, sync_fd);
    fop_close(sync_fd);
}

} // namespace tav
