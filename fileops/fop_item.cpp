// One item of a copy: finds it on both sides, shows it, accounts for it and hands it to what copies
// its kind.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cstring>
#include <fcntl.h>

namespace tav {

uint64_t fop_stamp(const struct stat &status)
{
    uint64_t stamp = 0xcbf29ce484222325u;
    for (uint64_t part :
         {static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino),
          static_cast<uint64_t>(status.st_size), static_cast<uint64_t>(status.st_mtim.tv_sec),
          static_cast<uint64_t>(status.st_mtim.tv_nsec),
          static_cast<uint64_t>(status.st_mode & S_IFMT)}) {
        stamp = (stamp ^ part) * 0x100000001b3u;
        stamp ^= stamp >> 29;
    }
    return stamp ? stamp : 1;
}

bool fop_leads_nowhere(int error, int dir, const char *name)
{
    struct stat status;
    const bool nowhere = error == ENOENT || error == ENOTDIR || error == ELOOP;
    return nowhere &&
           fop_retry([&] { return gFopSys.fstatat(dir, name, &status, AT_SYMLINK_NOFOLLOW); }) ==
               0 &&
           S_ISLNK(status.st_mode);
}

FopCopied fop_refuse_itself(const FopItem &item)
{
    fop_errinfo(item.job, "File Scan", "Can't copy file(s) into itself.");
    return FOP_END;
}

FopCopied fop_read_failed(const FopItem &item, int error)
{
    return fop_ask_error(item.job, "Error reading '%s'\n%s\n", item.source.c_str(),
                         std::strerror(error));
}

FopCopied fop_write_failed(const FopItem &item, int error)
{
    return fop_ask_error(item.job, "Error writing '%s'\n%s\n", item.dest.c_str(),
                         std::strerror(error));
}

FopCopied fop_ask_overwrite(const FopItem &item)
{
    if (item.job->flags & FOP_OVERWRITE)
        return FOP_COPIED;
    switch (
        fop_alert(item.job, "Copy/Move", FOP_EXISTS_BUTTONS, FOP_EXISTS_TEXT, item.dest.c_str())) {
    case 1:
        return FOP_SKIPPED;
    case 2:
        return FOP_COPIED;
    case 3:
        item.job->flags |= FOP_OVERWRITE;
        return FOP_COPIED;
    default:
        return FOP_END;
    }
}

FopCopied fop_ask_owner(const FopItem &item)
{
    if (item.job->flags & FOP_NO_OWNER)
        return FOP_COPIED;
    int answer = fop_alert(item.job, "Copy/Move", "&Ignore|&Abort",
                           "Unable to change owner permissions '%s'\n", item.dest.c_str());
    if (answer == FOP_ANSWER_ABORT)
        return FOP_END;
    item.job->flags |= FOP_NO_OWNER;
    return FOP_COPIED;
}

namespace {

void x_show(const FopItem &item)
{
    FileOp *job = item.job;
    fop_update_info(job, {nullptr, "From: ", item.source.c_str(), "  To: ", item.dest.c_str(),
                          fop_percent(job->done_bytes, job->total_bytes),
                          fop_calc_time_left(job, job->done_bytes, job->total_bytes)});
}

// Finds the names of an item on both sides. Its paths are for the texts.
void x_locate(FopItem &item, const std::string &dir)
{
    FileOp *job = item.job;
    const DirGroup &group = *job->groups[item.group];
    if (item.item >= 0) {
        const char *name = group.names[item.item];
        _build_path(item.source, dir.c_str(), name);
        item.from_dir = fop_dir(job, FOP_SOURCE, item.group);
        item.from = fop_source_name(name);
        item.to = fop_dest_name(job, item.group, name);
    } else {
        item.source = dir;
    }
    fop_dest_path(job, item.source, item.dest);
}

// Reads the source's status; FOP_COPIED when it is known.
FopCopied x_look_at_source(FopItem &item)
{
    FileOp *job = item.job;
    int result = -1;
    if (item.item < 0) {
        int fd = fop_dir(job, FOP_SOURCE, item.group);
        result = fd == -1 ? -1 : gFopSys.fstat(fd, &item.status);
    } else if (item.from_dir != -1) {
        bool follow = job->flags & FOP_FOLLOW;
        // What the scan took for a regular file is opened at once: its status comes with it.
        if (!follow && job->groups[item.group]->kinds[item.item] == FOP_FILE &&
            fop_open_source(item) == 0)
            return FOP_COPIED;
        auto look = [&](int flags) {
            return fop_retry(
                [&] { return gFopSys.fstatat(item.from_dir, item.from, &item.status, flags); });
        };
        result = look(AT_SYMLINK_NOFOLLOW);
        if (result == 0 && follow && S_ISLNK(item.status.st_mode)) {
            item.link_stamp = fop_stamp(item.status);
            result = look(0);
        }
    }
    if (result == 0)
        return FOP_COPIED;
    return fop_ask_error(job, "Unable to stat '%s'\n%s\n", item.source.c_str(),
                         std::strerror(errno));
}

// Creates the destination directory of a single directory that is copied under a new name.
FopCopied x_make_dest(FopItem &item)
{
    FileOp *job = item.job;
    if (!(job->flags & FOP_MAKE_DEST))
        return FOP_COPIED;
    int root = fop_dir(job, FOP_DEST, 0);
    const char *name = fop_dest_name(job, 0, job->groups[0]->names[0]);
    if (root == -1 || fop_retry([&] { return gFopSys.mkdirat(root, name, 0777); }) == -1) {
        fop_errinfo(job, "Make Directory", "Unable to create '%s' directory\n", job->dest.c_str());
        return FOP_END;
    }
    job->flags &= ~FOP_MAKE_DEST;
    return FOP_COPIED;
}

void x_look_at_dest(FopItem &item)
{
    item.to_dir = fop_dir(item.job, FOP_DEST, item.group);
    item.to_error = item.to_dir == -1 ? errno : 0;
    if (item.to_dir == -1)
        return;
    item.exists =
        fop_retry([&] { return gFopSys.fstatat(item.to_dir, item.to, &item.dest_status, 0); }) == 0;
    item.dest_error = item.exists ? 0 : errno;
}

// A file is accounted before it is copied; one that grew since the scan raises the total.
void x_account(FopItem &item)
{
    FileOp *job = item.job;
    job->done_bytes += item.status.st_size;
    if (job->done_bytes > job->total_bytes)
        job->total_bytes = job->done_bytes;
}

FopCopied x_copy_kind(FopItem &item)
{
    mode_t mode = item.status.st_mode;
    if (S_ISDIR(mode))
        return fop_copy_directory(item);
    if (S_ISFIFO(mode))
        return fop_copy_fifo(item);
    if (S_ISLNK(mode))
        return fop_copy_link(item);
    if (S_ISREG(mode))
        return fop_copy_regular(item);
    return FOP_SKIPPED; // became a device or a socket since the scan
}

// Everything but finding the names.
FopCopied x_copy(FopItem &item)
{
    FopCopied result = x_look_at_source(item);
    if (result == FOP_COPIED)
        result = x_make_dest(item);
    if (result != FOP_COPIED)
        return result;
    x_show(item);
    if (item.item < 0) {
        result = fop_finish_directory(item);
    } else {
        x_account(item);
        x_look_at_dest(item);
        result = x_copy_kind(item);
    }
    if (result == FOP_COPIED)
        x_show(item);
    return result;
}

} // namespace

FopCopied fop_copy_file(FileOp *job, int group, int i, const std::string &dir)
{
    FopItem item;
    item.job = job;
    item.group = group;
    item.item = i;
    x_locate(item, dir);
    FopCopied result = x_copy(item);
    fop_close(item.from_fd);
    uint64_t *stamps = job->groups[group]->stamps;
    if (result == FOP_COPIED && i >= 0 && stamps)
        stamps[i] = item.link_stamp ? item.link_stamp : fop_stamp(item.status);
    return result;
}

} // namespace tav
