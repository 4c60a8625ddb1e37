// The delete pass: from the last group to the first and from the last name to the first, so that
// all that was found in a directory goes before the directory itself.
#include "fileops/fop_dirs.h"
#include "fileops/fop_internal.h"
#include "fileops/fop_sys.h"

#include <cstring>
#include <fcntl.h>

namespace tav {
namespace {

enum Answer { GO_ON, KEEP, END };

// One name on its way out.
struct Doomed {
    FileOp *job;
    const DirGroup &group;
    int item;
    const std::string &dir; // the group's path
    int fd;                 // and its descriptor
    const char *name;       // in it

    // For the texts; making it for each of many names would cost more than removing some of them.
    std::string path() const
    {
        std::string joined;
        _build_path(joined, dir.c_str(), group.names[item]);
        return joined;
    }
};

// Before anything is removed: files that are write protected, or all of them, are asked about.
Answer x_ask_first(const Doomed &doomed, const struct stat &status)
{
    FileOp *job = doomed.job;
    bool writable = status.st_mode & S_IWUSR;
    if ((job->flags & FOP_DELETE_ALL) || (writable && !(job->flags & FOP_DELETE_ASK)))
        return GO_ON;
    fop_update_info(
        job, {nullptr, nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_KEEP, FOP_TIME_BLANK});
    const char *buttons = "@&Skip|&Delete|de&Lete all|#&Abort";
    std::string path = doomed.path();
    int answer = writable
                     ? fop_alert(job, "Delete", buttons, "File '%s'\n", path.c_str())
                     : fop_alert(job, "Delete", buttons, "Unwriteable file '%s'\n", path.c_str());
    if (answer == 1)
        return KEEP;
    if (answer == 3)
        job->flags |= FOP_DELETE_ALL;
    return answer == 4 ? END : GO_ON;
}

// A moved source goes only while it is what was copied.
Answer x_check_copied(const Doomed &doomed, const struct stat &status)
{
    const DirGroup &group = doomed.group;
    if (S_ISDIR(status.st_mode) && group.kinds[doomed.item] == FOP_DIR)
        return GO_ON; // a directory goes only when it is empty
    if (group.stamps && group.stamps[doomed.item] == fop_stamp(status))
        return GO_ON;
    FopCopied answer = fop_ask_error(doomed.job, "Error reading '%s'\n%s\n", doomed.path().c_str(),
                                     std::strerror(EBUSY));
    return answer == FOP_END ? END : KEEP;
}

Answer x_ask_failed(FileOp *job, const std::string &path, int error)
{
    int answer = fop_alert(job, "Delete", "@&Continue|#&Abort", "Unable to delete '%s'\n%s\n",
                           path.c_str(), std::strerror(error));
    return answer == FOP_ANSWER_ABORT ? END : GO_ON;
}

// Looks at it where that matters, and asks. is_dir becomes what it turns out to be.
Answer x_may_go(const Doomed &doomed, bool &is_dir)
{
    FileOp *job = doomed.job;
    bool move = job->op == FOP_MOVE;
    if (!move && (job->flags & FOP_DELETE_ALL))
        return GO_ON;
    struct stat status;
    if (fop_retry([&] {
            return gFopSys.fstatat(doomed.fd, doomed.name, &status, AT_SYMLINK_NOFOLLOW);
        }) == -1) {
        if (!move)
            return GO_ON; // removing it is tried all the same
        // What cannot be looked at cannot be known to be what was copied.
        return x_ask_failed(job, doomed.path(), errno) == END ? END : KEEP;
    }
    is_dir = S_ISDIR(status.st_mode);
    Answer answer = x_ask_first(doomed, status);
    return answer == GO_ON && move ? x_check_copied(doomed, status) : answer;
}

// All live names of a group, the last first: 0, or -1 to end the job.
int x_delete_group(FileOp *job, int g, int show)
{
    DirGroup &group = *job->groups[g];
    std::string dir;
    fop_group_dir(job, g, dir);
    for (int i = group.count; i-- > 0;) {
        if (show && fop_stopped(job))
            return -1;
        if (!group.names[i][0])
            continue;
        if (fop_dir(job, FOP_SOURCE, g) == -1) // asked once, not once for each of its names
            return x_ask_failed(job, dir, errno) == END ? -1 : 0;
        if (show)
            fop_update_info(job, {"Deleting", " Dir: ", dir.c_str(), "File: ", group.names[i],
                                  fop_percent(job->n_done, job->n_items),
                                  fop_calc_time_left(job, job->n_done, job->n_items)});
        if (fop_delete_file(job, g, i, dir) != 0)
            return -1;
        if (show)
            job->n_done++;
    }
    return 0;
}

} // namespace

int fop_delete_file(FileOp *job, int group, int item, const std::string &dir)
{
    const DirGroup &from = *job->groups[group];
    Doomed doomed{
        job, from, item, dir, fop_dir(job, FOP_SOURCE, group), fop_source_name(from.names[item])};
    bool is_dir = from.kinds[item] == FOP_DIR;
    Answer answer = x_may_go(doomed, is_dir);
    if (answer != GO_ON)
        return answer == END ? -1 : 0;
    int flags = is_dir ? AT_REMOVEDIR : 0;
    if (fop_retry([&] { return gFopSys.unlinkat(doomed.fd, doomed.name, flags); }) == -1) {
        // A directory that still holds what an aborted move did not come to is no failure.
        if (is_dir && job->op == FOP_MOVE && job->abort && errno == ENOTEMPTY)
            return 0;
        if (x_ask_failed(job, doomed.path(), errno) == END)
            return -1;
    }
    // Also after a failure that the user let pass: the marks of the caller are cleared either way.
    fop_item_done(job, dir.c_str(), from.names[item]);
    return 0;
}

int fop_delete_files(FileOp *job, int show)
{
    for (int g = job->n_groups; g-- > 0;) {
        // What was reached through a followed link belongs to somebody else.
        if (!job->groups[g]->linked && x_delete_group(job, g, show) != 0)
            return -1;
    }
    return 0;
}

} // namespace tav
