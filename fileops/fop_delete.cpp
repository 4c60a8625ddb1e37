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

// Before anything is removed: files that are write protected, or all of them, are asked about.
Answer x_ask_first(FileOp *job, const std::string &path, const struct stat &status)
{
    bool writable = status.st_mode & S_IWUSR;
    if ((job->flags & FOP_DELETE_ALL) || (writable && !(job->flags & FOP_DELETE_ASK)))
        return GO_ON;
    fop_update_info(
        job, {nullptr, nullptr, nullptr, nullptr, nullptr, FOP_PERCENT_KEEP, FOP_TIME_BLANK});
    const char *buttons = "@&Skip|&Delete|de&Lete all|#&Abort";
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
Answer x_check_copied(FileOp *job, const DirGroup &group, int item, const struct stat &status,
                      const std::string &path)
{
    if (S_ISDIR(status.st_mode) && group.kinds[item] == FOP_DIR)
        return GO_ON; // a directory goes only when it is empty
    if (group.stamps && group.stamps[item] == fop_stamp(status))
        return GO_ON;
    return fop_ask_error(job, "Error reading '%s'\n%s\n", path.c_str(), std::strerror(EBUSY)) == -1
               ? END
               : KEEP;
}

Answer x_ask_failed(FileOp *job, const char *path, int error)
{
    int answer = fop_alert(job, "Delete", "@&Continue|#&Abort", "Unable to delete '%s'\n%s\n", path,
                           std::strerror(error));
    return answer == FOP_ANSWER_ABORT ? END : GO_ON;
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
            return x_ask_failed(job, dir.c_str(), errno) == END ? -1 : 0;
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

int fop_delete_file(FileOp *job, int group_number, int item, const std::string &dir)
{
    const DirGroup &group = *job->groups[group_number];
    const char *name = fop_source_name(group.names[item]);
    std::string path;
    _build_path(path, dir.c_str(), group.names[item]);
    bool is_dir = group.kinds[item] == FOP_DIR;
    int fd = fop_dir(job, FOP_SOURCE, group_number);
    bool must_look = job->op == FOP_MOVE || !(job->flags & FOP_DELETE_ALL);
    struct stat status;
    if (must_look &&
        fop_retry([&] { return gFopSys.fstatat(fd, name, &status, AT_SYMLINK_NOFOLLOW); }) == 0) {
        is_dir = S_ISDIR(status.st_mode);
        Answer answer = x_ask_first(job, path, status);
        if (answer == GO_ON && job->op == FOP_MOVE)
            answer = x_check_copied(job, group, item, status, path);
        if (answer != GO_ON)
            return answer == END ? -1 : 0;
    } else if (job->op == FOP_MOVE) {
        // What cannot be looked at cannot be known to be what was copied.
        return x_ask_failed(job, path.c_str(), errno) == END ? -1 : 0;
    }
    int flags = is_dir ? AT_REMOVEDIR : 0;
    if (fop_retry([&] { return gFopSys.unlinkat(fd, name, flags); }) == -1) {
        // A directory that still holds what an aborted move did not come to is no failure.
        if (is_dir && job->op == FOP_MOVE && job->abort && errno == ENOTEMPTY)
            return 0;
        if (x_ask_failed(job, path.c_str(), errno) == END)
            return -1;
    }
    // Also after a failure that the user let pass: the marks of the caller are cleared either way.
    fop_item_done(job, dir.c_str(), group.names[item]);
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
