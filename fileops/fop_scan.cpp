// The scan: walks the list of groups while it grows, so that directories are taken breadth first.
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>

namespace tav {
namespace {

constexpr size_t READ_SIZE = 32768; // of one reading of a directory

enum Ask { GO_ON, END };

Ask x_ask_stat(FileOp *job, int group, int item)
{
    int error = errno;
    std::string path;
    fop_source_path(job, group, job->groups[group]->names[item], path);
    int answer = fop_alert(job, "File Scan", "&Continue|&Abort", "Unable to stat '%s'\n%s\n",
                           path.c_str(), std::strerror(error));
    fop_set_dead(job, group, item);
    return answer == FOP_ANSWER_ABORT ? END : GO_ON;
}

Ask x_ask_dir(FileOp *job, const char *what, int group, int item)
{
    int error = errno;
    std::string path;
    fop_source_path(job, group, job->groups[group]->names[item], path);
    int answer =
        fop_alert(job, "Dir Reading", "&Continue|&Abort", "Unable to %s '%s' directory\n%s\n", what,
                  path.c_str(), std::strerror(error));
    return answer == FOP_ANSWER_ABORT ? END : GO_ON;
}

FopKind x_kind_of_type(uint8_t type)
{
    switch (type) {
    case DT_DIR:
        return FOP_DIR;
    case DT_REG:
        return FOP_FILE;
    case DT_LNK:
        return FOP_LINK;
    case DT_FIFO:
        return FOP_FIFO;
    case DT_UNKNOWN:
        return FOP_UNKNOWN;
    default:
        return FOP_OTHER;
    }
}

FopKind x_kind_of_mode(mode_t mode)
{
    if (S_ISREG(mode))
        return FOP_FILE;
    if (S_ISDIR(mode))
        return FOP_DIR;
    if (S_ISLNK(mode))
        return FOP_LINK;
    return S_ISFIFO(mode) ? FOP_FIFO : FOP_OTHER;
}

// What one directory's reading collects.
struct Reading {
    int fd;
    size_t first;               // the pool's count before the first name
    std::vector<uint8_t> kinds; // of each name
};

// Takes the entries of one buffer: 0, or -1 when the job is to end.
int x_take(FileOp *job, Reading &reading, const char *buffer, ssize_t size)
{
    for (ssize_t at = 0; at < size;) {
        const FopEntry entry = fop_sys_entry(buffer, at);
        if (fop_stopped(job))
            return -1;
        if (fop_sys_is_dots(entry.name))
            continue;
        if (!fop_strdup(job, entry.name)) {
            fop_ENOMEM(job);
            return -1;
        }
        reading.kinds.push_back(x_kind_of_type(entry.type));
        job->n_items++;
        fop_update_info(job, {"Scanning", nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_KEEP,
                              FOP_TIME_FIRST});
    }
    return 0;
}

// Reads all names into the pool: 0, -1 to end the job, or 1 with errno when reading failed.
int x_read_names(FileOp *job, Reading &reading)
{
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[READ_SIZE]);
    if (!buffer) {
        fop_ENOMEM(job);
        return -1;
    }
    for (;;) {
        ssize_t size =
            fop_retry([&] { return gFopSys.getdents(reading.fd, buffer.get(), READ_SIZE); });
        if (size == -1)
            return 1;
        if (size == 0)
            return fop_stopped(job) ? -1 : 0;
        if (x_take(job, reading, buffer.get(), size) != 0)
            return -1;
    }
}

// Makes the group of what was read. The names lie one after another in the pool's own array.
DirGroup *x_make_group(FileOp *job, const Reading &reading)
{
    size_t count = reading.kinds.size();
    DirGroup *group = fop_group_new(job, static_cast<int>(count));
    if (!group)
        return nullptr;
    if (count > 0) {
        std::memcpy(group->names, job->pool->pointers + reading.first, count * sizeof(char *));
        std::memcpy(group->kinds, reading.kinds.data(), count);
    }
    size_t size = (static_cast<size_t>(job->n_groups) + 1) * sizeof(DirGroup *);
    if (static_cast<size_t>(job->n_groups) + 1 > job->room_groups) {
        size_t room = job->room_groups * 2 + 16;
        size = room * sizeof(DirGroup *);
        void *grown = alloc_realloc(job->pool, job->groups, size);
        if (!grown)
            return nullptr;
        job->groups = static_cast<DirGroup **>(grown);
        job->room_groups = room;
    }
    job->groups[job->n_groups++] = group;
    return group;
}

// The status of a directory that is about to be read.
enum Place { FITS, CIRCLE, ITSELF };

// Where a directory stands: below itself (through a followed link), in the way of its own copy, or
// well.
Place x_place(FileOp *job, int group, int item, const FopId &id, bool linked)
{
    for (int at = group; linked && at >= 0; at = job->groups[at]->parent) {
        if (job->groups[at]->id == id)
            return CIRCLE;
    }
    if (job->op == FOP_DELETE)
        return FITS;
    if (fop_is_above_dest(job, id))
        return ITSELF;
    struct stat status;
    int root = group == 0 ? fop_dir(job, FOP_DEST, 0) : -1;
    const char *name = fop_dest_name(job, group, job->groups[group]->names[item]);
    bool same = root != -1 && gFopSys.fstatat(root, name, &status, 0) == 0 && fop_id(status) == id;
    return same ? ITSELF : FITS;
}

} // namespace

const char *fop_source_name(const char *name)
{
    while (*name == '/')
        name++;
    return name;
}

void fop_set_dead(FileOp *job, int group, int item)
{
    static char sDead[] = ""; // the name itself may still be part of a group's path
    job->groups[group]->names[item] = sDead;
}

int fop_add_dir(FileOp *job, int group, int item, bool linked)
{
    const char *name = job->groups[group]->names[item];
    int dir = fop_dir(job, FOP_SOURCE, group);
    int flags = O_RDONLY | O_DIRECTORY | (linked ? 0 : O_NOFOLLOW);
    Reading reading{-1, job->pool->count, {}};
    if (dir != -1)
        reading.fd =
            fop_retry([&] { return gFopSys.openat(dir, fop_source_name(name), flags, 0); });
    struct stat status;
    if (reading.fd == -1 || gFopSys.fstat(reading.fd, &status) == -1) {
        int answer = x_ask_dir(job, "open", group, item);
        fop_close(reading.fd);
        return answer == END ? -1 : 0;
    }
    Place place = x_place(job, group, item, fop_id(status), linked);
    int result = place == FITS ? x_read_names(job, reading) : 0;
    if (result == 1)
        result = x_ask_dir(job, "read", group, item) == END ? -1 : 0;
    gFopSys.close(reading.fd);
    if (place == ITSELF) {
        fop_errinfo(job, "File Scan", "%s", fop_into_itself(job));
        return -1;
    }
    if (place == CIRCLE)
        fop_set_dead(job, group, item);
    if (place == CIRCLE || result != 0)
        return result;
    DirGroup *added = x_make_group(job, reading);
    if (!added) {
        fop_ENOMEM(job);
        return -1;
    }
    added->dir = name;
    added->parent = group;
    added->id = fop_id(status);
    added->linked = linked;
    return 0;
}

namespace {

// Adds the answer about links to the flags; -1 when the job is to end.
int x_links_known(FileOp *job)
{
    if (job->flags & (FOP_FOLLOW | FOP_LINKS))
        return 0;
    int answer = fop_ask(job);
    if (answer == -1)
        return -1;
    job->flags |= static_cast<uint32_t>(answer);
    return 0;
}

// A delete wants no sizes and follows nothing: the kind that the reading gave is enough.
int x_scan_kind(FileOp *job, int group, int item, int dir, struct stat &status)
{
    uint8_t &kind = job->groups[group]->kinds[item];
    if (job->op == FOP_DELETE && kind != FOP_UNKNOWN)
        return 0;
    const char *name = fop_source_name(job->groups[group]->names[item]);
    auto look = [&](int flags) {
        return dir == -1 ? -1
                         : fop_retry([&] { return gFopSys.fstatat(dir, name, &status, flags); });
    };
    if (look(AT_SYMLINK_NOFOLLOW) == -1)
        return x_ask_stat(job, group, item) == END ? -1 : 1;
    kind = x_kind_of_mode(status.st_mode);
    if (job->op == FOP_DELETE || kind != FOP_LINK)
        return 0;
    if (x_links_known(job) != 0)
        return -1;
    if (!(job->flags & FOP_FOLLOW))
        return 0;
    if (look(0) == -1)
        return x_ask_stat(job, group, item) == END ? -1 : 1;
    kind = x_kind_of_mode(status.st_mode);
    return 2;
}

// One name: 0, or -1 to end the job.
int x_scan_item(FileOp *job, int number, int item)
{
    DirGroup &group = *job->groups[number];
    struct stat status {};
    int dir = fop_dir(job, FOP_SOURCE, number);
    int result = x_scan_kind(job, number, item, dir, status);
    if (result == -1 || result == 1)
        return result == -1 ? -1 : 0;
    if (group.kinds[item] == FOP_OTHER) {
        fop_set_dead(job, number, item);
        return 0;
    }
    job->total_bytes += status.st_size;
    if (group.kinds[item] != FOP_DIR)
        return 0;
    return fop_add_dir(job, number, item, group.linked || result == 2);
}

} // namespace

int fop_build_filelist(FileOp *job)
{
    for (int g = 0; g < job->n_groups; g++) {
        for (int i = 0; i < job->groups[g]->count; i++) {
            if (!job->groups[g]->names[i][0])
                continue;
            if (fop_stopped(job) || x_scan_item(job, g, i) != 0)
                return -1;
        }
    }
    return 0;
}

} // namespace tav
