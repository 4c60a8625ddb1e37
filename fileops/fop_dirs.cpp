// The directories of a job as descriptors: see fop_dirs.h.
#include "fileops/fop_dirs.h"

#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

namespace tav {
namespace {

constexpr int OPEN_PATH = O_PATH | O_DIRECTORY;

int x_open(int dir, const char *path, int flags)
{
    return fop_retry([&] { return gFopSys.openat(dir, path, flags, 0); });
}

const FopId &x_id(const DirGroup &group, FopSide side)
{
    return side == FOP_SOURCE ? group.id : group.dest_id;
}

// Hands fd back when it is the expected directory; else closes it.
int x_verified(int fd, const FopId &expected)
{
    struct stat status;
    if (fd == -1)
        return -1;
    if (gFopSys.fstat(fd, &status) == -1) {
        fop_close(fd);
        return -1;
    }
    if (fop_id(status) == expected)
        return fd;
    fop_close(fd);
    errno = ESTALE;
    return -1;
}

// The directory that dest is a name in.
int x_open_above_dest(FileOp *job)
{
    std::string parent = job->dest;
    while (parent.size() > 1 && parent.back() == '/')
        parent.pop_back();
    size_t slash = parent.rfind('/');
    if (slash == std::string::npos)
        parent = job->dest.empty() ? "" : ".";
    else
        parent.resize(std::max<size_t>(slash, 1));
    return x_open(job->dirs->base, parent.c_str(), OPEN_PATH);
}

int x_open_root(FileOp *job, FopSide side)
{
    FopDirs &dirs = *job->dirs;
    if (side == FOP_SOURCE)
        return x_open(dirs.base, job->groups[0]->dir, OPEN_PATH);
    if (dirs.single)
        return x_open_above_dest(job);
    return x_open(dirs.base, job->dest.c_str(), OPEN_PATH);
}

int x_root(FileOp *job, FopSide side)
{
    int &root = job->dirs->root[side];
    if (root == -1)
        root = x_open_root(job, side);
    return root;
}

FopDirs::Open *x_find(FopDirs &dirs, FopSide side, int group)
{
    for (FopDirs::Open &open : dirs.open[side]) {
        if (open.fd != -1 && open.group == group) {
            open.used = ++dirs.turn;
            return &open;
        }
    }
    return nullptr;
}

int x_keep(FopDirs &dirs, FopSide side, int group, int fd)
{
    FopDirs::Open *oldest = dirs.open[side];
    for (FopDirs::Open &open : dirs.open[side]) {
        if (open.fd == -1 || (oldest->fd != -1 && open.used < oldest->used))
            oldest = &open;
    }
    fop_close(oldest->fd);
    *oldest = {group, fd, ++dirs.turn};
    return fd;
}

// One step down, from the parent's descriptor.
int x_open_child(FileOp *job, FopSide side, int number, int parent)
{
    const DirGroup &group = *job->groups[number];
    const char *name = side == FOP_SOURCE ? group.dir : fop_dest_name(job, group.parent, group.dir);
    // A followed link of the source, and a selected item whose destination is a link, may be
    // followed; the check of the identity keeps either from leading anywhere new.
    bool follow = side == FOP_SOURCE ? group.linked : group.parent == 0;
    int fd = x_open(parent, name, OPEN_PATH | (follow ? 0 : O_NOFOLLOW));
    return x_verified(fd, x_id(group, side));
}

// One step up from an open child: the way back through a deep tree.
int x_open_parent(FileOp *job, FopSide side, int number)
{
    for (FopDirs::Open &open : job->dirs->open[side]) {
        if (open.fd == -1 || job->groups[open.group]->parent != number)
            continue;
        int fd = x_verified(x_open(open.fd, "..", OPEN_PATH), x_id(*job->groups[number], side));
        if (fd != -1)
            return fd;
    }
    return -1;
}

} // namespace

FopDirs::~FopDirs()
{
    for (auto &side : open) {
        for (Open &entry : side)
            fop_close(entry.fd);
    }
    for (int fd : root)
        fop_close(fd);
    if (base != AT_FDCWD)
        fop_close(base);
}

std::unique_ptr<FopDirs> fop_dirs_new(const FileOp &job)
{
    std::unique_ptr<FopDirs> dirs(new (std::nothrow) FopDirs);
    if (!dirs)
        return nullptr;
    dirs->base = AT_FDCWD;
    bool relative = job.groups[0]->dir[0] != '/' || (!job.dest.empty() && job.dest[0] != '/');
    if (!relative)
        return dirs;
    int here = x_open(AT_FDCWD, ".", OPEN_PATH);
    if (here == -1)
        return nullptr;
    dirs->base = here;
    return dirs;
}

int fop_dir(FileOp *job, FopSide side, int group)
{
    FopDirs &dirs = *job->dirs;
    if (group == 0)
        return x_root(job, side);
    if (FopDirs::Open *open = x_find(dirs, side, group))
        return open->fd;
    int up = x_open_parent(job, side, group);
    if (up != -1)
        return x_keep(dirs, side, group, up);
    std::vector<int> chain; // what is not open on the way to the group, the group first
    int fd = -1;
    for (int at = group; at > 0; at = job->groups[at]->parent) {
        if (FopDirs::Open *open = x_find(dirs, side, at)) {
            fd = open->fd;
            break;
        }
        chain.push_back(at);
    }
    if (fd == -1)
        fd = x_root(job, side);
    for (size_t i = chain.size(); fd != -1 && i-- > 0;) {
        fd = x_open_child(job, side, chain[i], fd);
        if (fd != -1)
            x_keep(dirs, side, chain[i], fd);
    }
    return fd;
}

const char *fop_dest_name(const FileOp *job, int group, const char *name)
{
    if (group == 0 && job->dirs->single)
        return job->dirs->dest_name.c_str();
    return fop_source_name(name);
}

void fop_group_dir(const FileOp *job, int group, std::string &out)
{
    // One step from the last one asked for, as it mostly is, costs no walk through a deep tree.
    int &last = job->dirs->path_group;
    std::string &path = job->dirs->path;
    if (last > 0 && job->groups[last]->parent == group && group > 0) {
        path.resize(path.size() - std::strlen(job->groups[last]->dir) - 1);
        last = group;
    }
    std::vector<int> chain;
    int at = group;
    for (; at > 0 && at != last; at = job->groups[at]->parent)
        chain.push_back(at);
    if (at == 0)
        path = job->groups[0]->dir;
    for (size_t i = chain.size(); i-- > 0;) {
        const DirGroup &step = *job->groups[chain[i]];
        if (step.parent == 0) {
            std::string joined;
            _build_path(joined, path.c_str(), step.dir);
            path.swap(joined);
        } else {
            path += '/';
            path += step.dir;
        }
    }
    last = group;
    out = path;
}

void fop_source_path(const FileOp *job, int group, const char *name, std::string &out)
{
    std::string dir;
    fop_group_dir(job, group, dir);
    if (name)
        _build_path(out, dir.c_str(), name);
    else
        out.swap(dir);
}

void fop_dest_path(const FileOp *job, const std::string &source, std::string &out)
{
    size_t cut = std::min(job->src_len, source.size());
    _build_path(out, job->dest.c_str(), source.c_str() + cut);
}

bool fop_is_above_dest(FileOp *job, const FopId &id)
{
    FopDirs &dirs = *job->dirs;
    if (!dirs.above_known) {
        dirs.above_known = true;
        struct stat status;
        int root = x_root(job, FOP_DEST);
        int at = root != -1 ? root : x_open_above_dest(job); // it is still to be made
        while (at != -1 && gFopSys.fstat(at, &status) == 0) {
            if (!dirs.above.empty() && dirs.above.back() == fop_id(status))
                break; // the top is its own parent
            dirs.above.push_back(fop_id(status));
            int up = x_open(at, "..", OPEN_PATH);
            if (at != root)
                fop_close(at);
            at = up;
        }
        if (at != root)
            fop_close(at);
    }
    return std::find(dirs.above.begin(), dirs.above.end(), id) != dirs.above.end();
}

int fop_stat_path(FileOp *job, const char *path, struct stat *status, int flags)
{
    return fop_retry([&] { return gFopSys.fstatat(job->dirs->base, path, status, flags); });
}

} // namespace tav
