// Links and FIFOs: names that hold no content. One that stands where something else is gets a
// hidden name first, so that the old one stays until the new one is there.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <climits>
#include <fcntl.h>

namespace tav {
namespace {

// Times and owner of a name that is no regular file; of a link its own.
FopCopied x_finish_name(const FopItem &item)
{
    timespec times[2] = {item.status.st_atim, item.status.st_mtim};
    struct stat made;
    bool owner = gFopSys.fstatat(item.to_dir, item.to, &made, AT_SYMLINK_NOFOLLOW) == 0 &&
                 fop_has_owner(made, item.status);
    bool foreign = !owner && fop_retry([&] {
                                 return gFopSys.fchownat(item.to_dir, item.to, item.status.st_uid,
                                                         item.status.st_gid, AT_SYMLINK_NOFOLLOW);
                             }) == -1;
    if (fop_retry([&] {
            return gFopSys.utimensat(item.to_dir, item.to, times, AT_SYMLINK_NOFOLLOW);
        }) == -1 &&
        !fop_cannot_hold(errno))
        return fop_write_failed(item, errno);
    return foreign ? fop_ask_owner(item) : FOP_COPIED;
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

// Makes the item, in the place of what is there when the name is taken: 0, or -1.
template <typename Make>
int x_put(const FopItem &item, bool taken, Make make)
{
    if (!taken)
        return fop_retry([&] { return make(item.to); });
    std::string temp;
    if (fop_make_temp(item.job, item.to_dir, temp, make) == -1)
        return -1;
    if (fop_retry([&] {
            return gFopSys.renameat(item.to_dir, temp.c_str(), item.to_dir, item.to, 0);
        }) == 0)
        return 0;
    fop_retry([&] { return gFopSys.unlinkat(item.to_dir, temp.c_str(), 0); });
    return -1;
}

// Whether the name is taken, by whatever it is: a link counts by itself.
bool x_is_taken(const FopItem &item, struct stat &there)
{
    return item.to_dir != -1 &&
           fop_retry([&] {
               return gFopSys.fstatat(item.to_dir, item.to, &there, AT_SYMLINK_NOFOLLOW);
           }) == 0;
}

// Whether the link leads to what it would replace: nothing but a link to itself would be left.
bool x_leads_to(const FopItem &item, const struct stat &there)
{
    struct stat target;
    return !S_ISDIR(there.st_mode) && gFopSys.fstatat(item.from_dir, item.from, &target, 0) == 0 &&
           fop_id(target) == fop_id(there);
}

} // namespace

FopCopied fop_copy_link(FopItem &item)
{
    std::string target;
    if (x_readlink(item, target) == -1)
        return fop_ask_error(item.job, "Unable to read link '%s'\n", item.source.c_str());
    struct stat there;
    bool taken = x_is_taken(item, there);
    if (taken && (fop_id(there) == fop_id(item.status) || x_leads_to(item, there)))
        return fop_refuse_itself(item);
    if (taken && S_ISREG(there.st_mode)) {
        FopCopied answer = fop_ask_overwrite(item);
        if (answer != FOP_COPIED)
            return answer;
    }
    auto make = [&](const char *name) {
        return gFopSys.symlinkat(target.c_str(), item.to_dir, name);
    };
    if (item.to_dir == -1 || x_put(item, taken, make) == -1)
        return fop_ask_error(item.job, "Unable to create symbolic link '%s' to\n'%s'\n",
                             item.dest.c_str(), target.c_str());
    return x_finish_name(item);
}

FopCopied fop_copy_fifo(FopItem &item)
{
    if (item.exists && fop_id(item.dest_status) == fop_id(item.status))
        return fop_refuse_itself(item);
    struct stat there;
    const bool taken = x_is_taken(item, there); // looked at last: it may have come just now
    if ((item.exists && !S_ISFIFO(item.dest_status.st_mode)) ||
        (taken && !S_ISFIFO(there.st_mode) && !S_ISLNK(there.st_mode)))
        return fop_ask_error(item.job, "The '%s' is not a FIFO\n", item.dest.c_str());
    auto make = [&](const char *name) {
        return gFopSys.mkfifoat(item.to_dir, name, item.status.st_mode & 07777);
    };
    if (item.to_dir == -1 || x_put(item, taken, make) == -1)
        return fop_ask_error(item.job, "Unable to make '%s' FIFO\n", item.dest.c_str());
    return x_finish_name(item);
}

} // namespace tav
