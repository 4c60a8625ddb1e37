// The rename pass of a move: every selected item is tried as a rename first; what it cannot move
// stays in the list and is copied.
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>

namespace tav {
namespace {

enum Result { MOVED, STAYS, SKIPPED, END };

// One item on its way.
struct Item {
    int from_dir, to_dir;     // descriptors
    const char *from, *to;    // names in them
    std::string source, dest; // paths
};

Result x_rename(const Item &item, unsigned flags)
{
    int result = fop_retry(
        [&] { return gFopSys.renameat(item.from_dir, item.from, item.to_dir, item.to, flags); });
    return result == 0 ? MOVED : STAYS;
}

// Both names reach one file: renaming would at best do nothing, at worst lose it.
bool x_is_itself(const Item &item, const struct stat &dest)
{
    struct stat source;
    for (int flags : {AT_SYMLINK_NOFOLLOW, 0}) {
        if (gFopSys.fstatat(item.from_dir, item.from, &source, flags) == 0 &&
            fop_id(source) == fop_id(dest))
            return true;
    }
    return false;
}

// The destination is taken: asks, where that is not settled, and renames over it.
Result x_over_existing(FileOp *job, const Item &item)
{
    struct stat dest;
    if (gFopSys.fstatat(item.to_dir, item.to, &dest, 0) == -1) {
        // A link that leads nowhere is no file that could be lost; what cannot be looked at may be.
        return x_rename(item,
                        fop_leads_nowhere(errno, item.to_dir, item.to) ? 0 : RENAME_NOREPLACE);
    }
    if (x_is_itself(item, dest)) {
        fop_errinfo(job, "File Scan", "%s", fop_into_itself(job));
        return END;
    }
    if (!(job->flags & FOP_OVERWRITE)) {
        switch (fop_alert(job, "Move", FOP_EXISTS_BUTTONS, FOP_EXISTS_TEXT, item.dest.c_str())) {
        case 1:
            return SKIPPED;
        case 2:
            break;
        case 3:
            job->flags |= FOP_OVERWRITE;
            break;
        default:
            return END;
        }
    }
    return x_rename(item, 0);
}

// Renames without replacing, so that nothing that appears meanwhile is lost.
Result x_move(FileOp *job, const Item &item)
{
    if (item.from_dir == -1 || item.to_dir == -1)
        return STAYS;
    if (x_rename(item, RENAME_NOREPLACE) == MOVED)
        return MOVED;
    int error = errno;
    struct stat dest;
    // What exists is asked about also where it turns out that renaming is impossible.
    if (error == EEXIST || gFopSys.fstatat(item.to_dir, item.to, &dest, 0) == 0)
        return x_over_existing(job, item);
    // Where it cannot be asked not to replace, it was looked first that nothing is there.
    bool cannot_ask = errno == ENOENT && (error == EINVAL || error == ENOSYS);
    return cannot_ask ? x_rename(item, 0) : STAYS;
}

// One live name: 0, or -1 to end the job.
int x_move_item(FileOp *job, int i)
{
    DirGroup &group = *job->groups[0];
    const char *name = group.names[i];
    Item item{fop_dir(job, FOP_SOURCE, 0),
              fop_dir(job, FOP_DEST, 0),
              fop_source_name(name),
              fop_dest_name(job, 0, name),
              {},
              {}};
    _build_path(item.source, group.dir, name);
    fop_dest_path(job, item.source, item.dest);
    if (item.source == item.dest) {
        fop_errinfo(job, "File Scan", "%s", fop_into_itself(job));
        return -1;
    }
    Result result = x_move(job, item);
    if (result == MOVED)
        fop_item_done(job, group.dir, name);
    if (result == MOVED || result == SKIPPED) {
        fop_set_dead(job, 0, i);
        // Meant: after the first rename or skip the job asks about no existing file and no link
        // again.
        job->flags |= FOP_ALL_BUT_DEST;
    }
    return result == END ? -1 : 0;
}

} // namespace

int fop_move_files(FileOp *job)
{
    for (int i = 0; i < job->groups[0]->count; i++) {
        if (!job->groups[0]->names[i][0])
            continue;
        if (fop_stopped(job))
            return -1;
        if (x_move_item(job, i) != 0)
            return -1;
    }
    return 0;
}

} // namespace tav
