// One regular file: the questions before it, the copy into its target, and what can go wrong at the
// end.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tav {
namespace {

// A moved source that changed under the copy is not what was copied: it stays.
FopCopied x_check_unchanged(const FopItem &item, int from)
{
    struct stat now;
    int error = gFopSys.fstat(from, &now) == -1 ? errno : 0;
    if (error == 0 && fop_stamp(now) != fop_stamp(item.status))
        error = EBUSY;
    if (error == 0)
        return FOP_COPIED;
    return fop_read_failed(item, error);
}

// Something took the name while the copy ran: asked about like any existing file. Only a link that
// leads nowhere is replaced without a word; what cannot be looked at may be anything.
FopCopied x_ask_taken(FopItem &item, FopTarget &target)
{
    struct stat there;
    const bool known = gFopSys.fstatat(item.to_dir, item.to, &there, 0) == 0;
    if (known && fop_id(there) == fop_id(item.status))
        return fop_refuse_itself(item);
    if (known || !fop_leads_nowhere(errno, item.to_dir, item.to)) {
        FopCopied answer = fop_ask_overwrite(item);
        if (answer != FOP_COPIED)
            return answer;
    }
    target.replace = true;
    return FOP_COPIED;
}

// Names the complete file.
FopCopied x_commit(FopItem &item, FopTarget &target, bool placed)
{
    while (fop_target_commit(item, target) == -1) {
        if (placed && errno == EEXIST)
            return FOP_SKIPPED; // nothing is replaced there, and nothing more is asked
        if (errno != EEXIST || target.replace)
            return fop_write_failed(item, errno);
        FopCopied answer = x_ask_taken(item, target);
        if (answer != FOP_COPIED)
            return answer;
    }
    return FOP_COPIED;
}

// What the copy has beside its content.
FopCopied x_complete(const FopItem &item, int from, FopTarget &target, bool &owner)
{
    if (fop_copy_attributes(item, from, target, owner) == 0)
        return FOP_COPIED;
    target.wrote = false; // in place, the content is all there: it stays
    return fop_write_failed(item, errno);
}

// Everything after the source is open. placed: to where the user said in place of a name too long.
FopCopied x_copy_open(FopItem &item, int from, bool placed)
{
    FopTarget target;
    if (fop_target_open(item, target) == -1) {
        int error = errno;
        fop_target_drop(item, target);
        return placed ? FOP_SKIPPED : fop_write_failed(item, error);
    }
    if (target.made.st_dev != item.job->dirs->dest_dev)
        item.job->dirs->other_fs = true;
    FopCopied result = fop_copy_data(item, from, target);
    if (result == FOP_COPIED && item.job->op == FOP_MOVE)
        result = x_check_unchanged(item, from);
    bool owner = true;
    if (result == FOP_COPIED)
        result = x_complete(item, from, target, owner);
    if (result == FOP_COPIED)
        result = x_commit(item, target, placed);
    if (result != FOP_COPIED)
        fop_target_drop(item, target);
    else
        fop_close(target.old_fd);
    return result == FOP_COPIED && !owner ? fop_ask_owner(item) : result;
}

bool x_name_too_long(const FopItem &item)
{
    int error = item.to_dir == -1 ? item.to_error : item.dest_error;
    return !item.exists && error == ENAMETOOLONG;
}

// Asks for a shorter name; the answer lands where the user is, and replaces nothing there.
FopCopied x_copy_elsewhere(FopItem &item, int from)
{
    FopPlace place;
    const FopReport &report = *item.job->report;
    if (fop_stopped(item.job))
        return FOP_END;
    if (!report.long_name ||
        !report.long_name(item.job, item.source.c_str(), item.dest.c_str(), place))
        return FOP_SKIPPED;
    item.to_dir = place.dir_fd;
    item.to = place.name.c_str();
    item.dest = place.name;
    item.exists = false;
    FopCopied result = item.to_dir == -1 ? FOP_SKIPPED : x_copy_open(item, from, true);
    fop_close(place.dir_fd);
    item.to_dir = -1;
    item.to = "";
    return result;
}

} // namespace

int fop_open_source(FopItem &item)
{
    if (item.from_fd != -1)
        return 0;
    int follow = item.job->flags & FOP_FOLLOW ? 0 : O_NOFOLLOW;
    int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | follow;
    int fd = fop_retry([&] { return gFopSys.openat(item.from_dir, item.from, flags, 0); });
    struct stat status;
    if (fd == -1)
        return -1;
    int error = gFopSys.fstat(fd, &status) == -1 ? errno : 0;
    if (error == 0 && !S_ISREG(status.st_mode))
        error = ESTALE; // something else than what was looked at
    if (error == 0) {
        item.status = status;
        item.from_fd = fd;
        return 0;
    }
    gFopSys.close(fd);
    errno = error;
    return -1;
}

FopCopied fop_copy_regular(FopItem &item)
{
    if (item.exists && fop_id(item.dest_status) == fop_id(item.status))
        return fop_refuse_itself(item);
    if (item.exists) {
        fop_close(item.from_fd); // what it is counts when the question is answered
        item.from_fd = -1;
        FopCopied answer = fop_ask_overwrite(item);
        if (answer != FOP_COPIED)
            return answer;
    }
    if (fop_open_source(item) == -1)
        return fop_ask_error(item.job, "Unable to open '%s'\n%s\n", item.source.c_str(),
                             std::strerror(errno));
    return x_name_too_long(item) ? x_copy_elsewhere(item, item.from_fd)
                                 : x_copy_open(item, item.from_fd, false);
}

} // namespace tav
