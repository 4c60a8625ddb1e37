// The copy loop over the file list, what every item has in common, and the small kinds: links,
// FIFOs.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

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

FopCopied fop_refuse_itself(const FopItem &item)
{
    fop_errinfo(item.job, "File Scan", "Can't copy file(s) into itself.");
    return FOP_END;
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

FopCopied x_failed(int answer) { return answer == -1 ? FOP_END : FOP_SKIPPED; }

bool x_owner_fits(const struct stat &status, const struct stat &source)
{
    return status.st_uid == source.st_uid && status.st_gid == source.st_gid;
}

// Times and owner of a name that is no regular file; of a link its own.
FopCopied x_finish_name(const FopItem &item, const char *name)
{
    timespec times[2] = {item.status.st_atim, item.status.st_mtim};
    struct stat made;
    bool owner = gFopSys.fstatat(item.to_dir, name, &made, AT_SYMLINK_NOFOLLOW) == 0 &&
                 x_owner_fits(made, item.status);
    bool failed = !owner && fop_retry([&] {
                                return gFopSys.fchownat(item.to_dir, name, item.status.st_uid,
                                                        item.status.st_gid, AT_SYMLINK_NOFOLLOW);
                            }) == -1;
    fop_retry([&] { return gFopSys.utimensat(item.to_dir, name, times, AT_SYMLINK_NOFOLLOW); });
    return failed ? fop_ask_owner(item) : FOP_COPIED;
}

// The target of a link, however long: 0, or -1 with errno.
int x_readlink(const FopItem &item, std::string &target)
{
    for (size_t room = 1280; room <= 4 * PATH_MAX; room *= 2) {
        target.resize(room);
        ssize_t length = fop_retry(
            [&] { return gFopSys.readlinkat(item.from_dir, item.from, target.data(), room); });
        if (length == -1)
            return -1;
        if (static_cast<size_t>(length) < room) {
            target.resize(static_cast<size_t>(length));
            return 0;
        }
    }
    errno = ENAMETOOLONG;
    return -1;
}

// Makes the link under a hidden name and puts it in the place of what is there: 0, or -1.
int x_replace_by_link(const FopItem &item, const std::string &target)
{
    fop_sweep_temps(item.job, item.to_dir);
    std::string temp = fop_temp_name();
    if (fop_retry([&] { return gFopSys.symlinkat(target.c_str(), item.to_dir, temp.c_str()); }) ==
        -1)
        return -1;
    if (fop_retry([&] {
            return gFopSys.renameat(item.to_dir, temp.c_str(), item.to_dir, item.to, 0);
        }) == 0)
        return 0;
    fop_retry([&] { return gFopSys.unlinkat(item.to_dir, temp.c_str(), 0); });
    return -1;
}

} // namespace

FopCopied fop_copy_link(FopItem &item)
{
    std::string target;
    if (x_readlink(item, target) == -1)
        return x_failed(fop_ask_error(item.job, "Unable to read link '%s'\n", item.source.c_str()));
    struct stat there;
    bool taken = item.to_dir != -1 &&
                 gFopSys.fstatat(item.to_dir, item.to, &there, AT_SYMLINK_NOFOLLOW) == 0;
    if (taken && fop_id(there) == fop_id(item.status))
        return fop_refuse_itself(item);
    if (taken && S_ISREG(there.st_mode)) {
        FopCopied answer = fop_ask_overwrite(item);
        if (answer != FOP_COPIED)
            return answer;
    }
    int made = -1;
    if (item.to_dir != -1 && !taken) {
        made = fop_retry([&] { return gFopSys.symlinkat(target.c_str(), item.to_dir, item.to); });
    } else if (taken && !S_ISDIR(there.st_mode)) {
        made = x_replace_by_link(item, target);
    }
    if (made == -1)
        return x_failed(fop_ask_error(item.job, "Unable to create symbolic link '%s' to\n'%s'\n",
                                      item.dest.c_str(), target.c_str()));
    return x_finish_name(item, item.to);
}

FopCopied fop_copy_fifo(FopItem &item)
{
    if (item.exists && fop_id(item.dest_status) == fop_id(item.status))
        return fop_refuse_itself(item);
    if (item.exists && !S_ISFIFO(item.dest_status.st_mode))
        return x_failed(fop_ask_error(item.job, "The '%s' is not a FIFO\n", item.dest.c_str()));
    bool made = item.to_dir != -1;
    if (made && item.exists)
        gFopSys.unlinkat(item.to_dir, item.to, 0);
    made = made && fop_retry([&] {
                       return gFopSys.mkfifoat(item.to_dir, item.to, item.status.st_mode & 07777);
                   }) == 0;
    if (!made)
        return x_failed(fop_ask_error(item.job, "Unable to make '%s' FIFO\n", item.dest.c_str()));
    return x_finish_name(item, item.to);
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
    return x_failed(
        fop_ask_error(job, "Unable to stat '%s'\n%s\n", item.source.c_str(), std::strerror(errno)));
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

FopCopied x_copy_item(FileOp *job, int group, int i, const std::string &dir)
{
    FopItem item;
    item.job = job;
    item.group = group;
    item.item = i;
    x_locate(item, dir);
    FopCopied result = x_look_at_source(item);
    if (result == FOP_COPIED)
        result = x_make_dest(item);
    if (result != FOP_COPIED)
        return result;
    x_show(item);
    if (i < 0) {
        result = fop_finish_directory(item);
    } else {
        x_account(item);
        x_look_at_dest(item);
        result = x_copy_kind(item);
    }
    if (result != FOP_COPIED)
        return result;
    x_show(item);
    uint64_t *stamps = job->groups[group]->stamps;
    if (i >= 0 && stamps)
        stamps[i] = item.link_stamp ? item.link_stamp : fop_stamp(item.status);
    return FOP_COPIED;
}

// Where the copy loop stopped: that name and all after it were not copied.
struct Stop {
    int group;
    int item;
    bool early;
};

// The contents of a directory that could not be made are skipped with it.
void x_skip_group(FileOp *job, int g)
{
    DirGroup &group = *job->groups[g];
    for (int i = 0; i < group.count; i++)
        fop_set_dead(job, g, i);
    job->n_done += group.count;
}

// The names of one group: true to go on.
bool x_copy_group(FileOp *job, int g, Stop &stop)
{
    DirGroup &group = *job->groups[g];
    std::string dir;
    fop_group_dir(job, g, dir);
    for (int i = 0; i < group.count; i++) {
        stop = {g, i, true};
        if (fop_stopped(job))
            return false;
        const char *name = group.names[i];
        FopCopied result = FOP_COPIED;
        if (*name) {
            result = x_copy_item(job, g, i, dir);
            if (result == FOP_COPIED)
                fop_item_done(job, dir.c_str(), name);
            else
                fop_set_dead(job, g, i);
        }
        if (result == FOP_END)
            return false;
        job->n_done++;
    }
    stop = {g + 1, 0, true};
    if (fop_stopped(job))
        return false;
    return g == 0 || x_copy_item(job, g, -1, dir) != FOP_END;
}

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
    Stop stop{0, 0, false};
    for (int g = 0; g < job->n_groups; g++) {
        if (g > 0 && job->groups[g]->dest_id == FopId{}) {
            x_skip_group(job, g);
            continue;
        }
        stop = {g, 0, true};
        if (x_make_stamps(job, g) != 0 || !x_copy_group(job, g, stop))
            return stop;
    }
    return {job->n_groups, 0, false};
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

// Puts the copies on the disk before the first source is removed: 0, or -1 when that is not sure.
int x_sync_dest(FileOp *job)
{
    int root = fop_dir(job, FOP_DEST, 0);
    int fd = root == -1
                 ? -1
                 : fop_retry([&] { return gFopSys.openat(root, ".", O_RDONLY | O_DIRECTORY, 0); });
    if (fd == -1 || job->dirs->other_fs)
        ::sync(); // a directory that may not be read, or copies on several file systems
    if (fd == -1)
        return 0;
    int result = fop_retry([&] { return gFopSys.syncfs(fd); });
    int error = errno;
    gFopSys.close(fd);
    errno = error;
    return result;
}

// The second half of a move: removes what was copied.
void x_remove_sources(FileOp *job, const Stop &stop)
{
    for (int g = stop.group; g < job->n_groups; g++) {
        for (int i = g == stop.group ? stop.item : 0; i < job->groups[g]->count; i++)
            fop_set_dead(job, g, i);
    }
    if (!x_any_live(job))
        return;
    if (x_sync_dest(job) == -1) {
        fop_ask_error(job, "Error writing '%s'\n%s\n", job->dest.c_str(), std::strerror(errno));
        return; // with either answer every source stays
    }
    fop_delete_files(job, 0);
}

} // namespace

int fop_copy_file(FileOp *job, int group, int item)
{
    std::string dir;
    fop_group_dir(job, group, dir);
    return x_copy_item(job, group, item, dir);
}

void fop_copy_files(FileOp *job)
{
    struct stat root;
    int fd = fop_dir(job, FOP_DEST, 0);
    if (fd != -1 && gFopSys.fstat(fd, &root) == 0)
        job->dirs->dest_dev = root.st_dev;
    Stop stop = x_copy_all(job);
    fop_finish_modes(job);
    if (job->op == FOP_MOVE)
        x_remove_sources(job, stop);
}

} // namespace tav
