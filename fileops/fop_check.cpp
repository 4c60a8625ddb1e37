// The checks before a job touches anything: what the destination is, and that nothing goes into
// itself.
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <cstring>
#include <fcntl.h>

namespace tav {
namespace {

int x_count_live(const DirGroup &group)
{
    int live = 0;
    for (int i = 0; i < group.count; i++)
        live += group.names[i][0] != '\0';
    return live;
}

std::string x_last_component(const std::string &path)
{
    size_t end = path.size();
    while (end > 1 && path[end - 1] == '/')
        end--;
    size_t slash = path.rfind('/', end - 1);
    size_t begin = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(begin, end - begin);
}

// The only item is copied as dest itself.
void x_set_single(FileOp *job, const std::string &source)
{
    job->src_len = source.size();
    job->dirs->single = true;
    job->dirs->dest_name = x_last_component(job->dest);
}

int x_check_single(FileOp *job, const struct stat *dest)
{
    std::string source;
    struct stat status;
    fop_source_path(job, 0, job->groups[0]->names[0], source);
    const int dir = fop_dir(job, FOP_SOURCE, 0); // no path is too long
    const char *name = fop_source_name(job->groups[0]->names[0]);
    if (dir == -1 ||
        fop_retry([&] { return gFopSys.fstatat(dir, name, &status, AT_SYMLINK_NOFOLLOW); }) == -1) {
        fop_errinfo(job, "File Scan", "Unable to get stats for '%s'", source.c_str());
        return -1;
    }
    if (dest && S_ISDIR(dest->st_mode))
        return 0;
    if (dest && (dest->st_mode & S_IFMT) != (status.st_mode & S_IFMT)) {
        fop_errinfo(job, "File Scan", "Source and destination file types mismatch.");
        return -1;
    }
    if (!dest && S_ISDIR(status.st_mode))
        job->flags |= FOP_MAKE_DEST;
    x_set_single(job, source);
    return 0;
}

// The selected directories are held against the destination before anything is made or renamed;
// those that only the scan meets are held against it there.
int x_check_into_itself(FileOp *job)
{
    const DirGroup &group = *job->groups[0];
    int dir = fop_dir(job, FOP_SOURCE, 0);
    bool follow = job->op == FOP_COPY && (job->flags & FOP_FOLLOW); // a rename takes the link
    int flags = follow ? 0 : AT_SYMLINK_NOFOLLOW;
    for (int i = 0; dir != -1 && i < group.count; i++) {
        struct stat status;
        const char *name = group.names[i];
        if (!name[0] || gFopSys.fstatat(dir, fop_source_name(name), &status, flags) == -1)
            continue;
        if (S_ISDIR(status.st_mode) && fop_is_above_dest(job, fop_id(status))) {
            fop_errinfo(job, "File Scan", "%s", fop_into_itself(job));
            return -1;
        }
    }
    return 0;
}

int x_check_several(FileOp *job, const struct stat *dest)
{
    const char *path = job->dest.c_str();
    if (dest && S_ISDIR(dest->st_mode))
        return 0;
    if (dest) {
        fop_errinfo(job, "File Scan", "Can't copy/move multiple files into \n'%s'\n", path);
        return -1;
    }
    if (x_check_into_itself(job) != 0)
        return -1;
    int answer =
        fop_alert(job, "Make Directory", "&Yes|&Abort",
                  "The '%s' directory doesn't exist\nDo you want to create this directory ?", path);
    if (answer == FOP_ANSWER_ABORT)
        return -1;
    if (fop_retry([&] { return gFopSys.mkdirat(job->dirs->base, path, 0777); }) == 0)
        return 0;
    fop_errinfo(job, "Make Directory", "Unable to create '%s' directory\n", path);
    return -1;
}

} // namespace

const char *fop_into_itself(const FileOp *job)
{
    return job->op == FOP_MOVE ? "Can't move file(s) into itself."
                               : "Can't copy file(s) into itself.";
}

int fop_check_dst(FileOp *job)
{
    if (job->op != FOP_COPY && job->op != FOP_MOVE)
        return 0;
    struct stat status;
    bool exists = fop_stat_path(job, job->dest.c_str(), &status, 0) == 0;
    const DirGroup &group = *job->groups[0];
    bool single = group.count == 1 && x_count_live(group) == 1;
    int result = single ? x_check_single(job, exists ? &status : nullptr)
                        : x_check_several(job, exists ? &status : nullptr);
    if (result == 0 && job->op == FOP_MOVE)
        result = x_check_into_itself(job);
    return result;
}

} // namespace tav
