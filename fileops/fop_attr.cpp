// What a copy has beside its content: owner, extended attributes, access lists, mode, times.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <vector>

namespace tav {
namespace {

constexpr size_t LIST_SIZE = 1024;
constexpr char ACL_NAME[] = "system.posix_acl_access";

// One attribute, where both sides have it: whether it was set, or -1 with errno.
int x_copy_one(int from, int to, const char *name)
{
    ssize_t length = gFopSys.getxattr(from, name, nullptr, 0);
    std::vector<char> value(length < 0 ? 0 : static_cast<size_t>(length) + 1);
    if (length >= 0)
        length = gFopSys.getxattr(from, name, value.data(), value.size());
    if (length >= 0 && gFopSys.setxattr(to, name, value.data(), static_cast<size_t>(length)) == 0)
        return 1;
    return fop_cannot_hold(errno) ? 0 : -1;
}

// The names of all attributes, one after another: 0, or -1 with errno.
int x_names(int from, std::vector<char> &list)
{
    list.resize(LIST_SIZE);
    ssize_t length = gFopSys.listxattr(from, list.data(), list.size());
    for (int turn = 0; turn < 3 && length == -1 && errno == ERANGE; turn++) {
        ssize_t wanted = gFopSys.listxattr(from, nullptr, 0);
        list.resize(static_cast<size_t>(wanted > 0 ? wanted : 0) + LIST_SIZE);
        length = gFopSys.listxattr(from, list.data(), list.size());
    }
    list.resize(static_cast<size_t>(length > 0 ? length : 0));
    return length >= 0 || fop_cannot_hold(errno) ? 0 : -1;
}

bool x_set_owner(int fd, const struct stat &want)
{
    return fop_retry([&] {
               return gFopSys.fchownat(fd, "", want.st_uid, want.st_gid, AT_EMPTY_PATH);
           }) == 0;
}

// The mode that the finished copy has to have.
mode_t x_final_mode(const FopTarget &target, bool owner)
{
    if (target.replace)
        return target.old.st_mode & 01777;     // running as the owner is not left to other content
    mode_t mode = target.made.st_mode & 07777; // what creating left of the source's, less the mask
    return owner ? mode : mode & ~static_cast<mode_t>(S_ISUID | S_ISGID);
}

} // namespace

bool fop_has_owner(const struct stat &made, const struct stat &source)
{
    return made.st_uid == source.st_uid && made.st_gid == source.st_gid;
}

bool fop_cannot_hold(int error)
{
    switch (error) {
    case EPERM:
    case EACCES:
    case EROFS:
    case EOPNOTSUPP:
    case ENOSYS:
    case EINVAL:
    case ENODATA: // it has gone meanwhile
    case ENOSPC:  // of attributes, which have little room of their own
    case EDQUOT:
    case E2BIG:
    case ERANGE:
        return true;
    default:
        return false;
    }
}

int fop_copy_xattrs(int from, int to, int acl_from)
{
    std::vector<char> names;
    if (x_names(from, names) == -1)
        return -1;
    int all = 0;
    for (size_t at = 0; at < names.size(); at += std::strlen(names.data() + at) + 1) {
        const char *name = names.data() + at;
        bool skip = acl_from != from && std::strcmp(name, ACL_NAME) == 0;
        int set = skip ? 0 : x_copy_one(from, to, name);
        if (set == -1)
            return -1;
        all += set;
    }
    bool other = acl_from != FOP_ACL_NONE && acl_from != from;
    int set = other ? x_copy_one(acl_from, to, ACL_NAME) : 0;
    return set == -1 ? -1 : all + set;
}

namespace {

// The owner and an access list may have changed the mode.
int x_set_mode(int fd, mode_t mode)
{
    struct stat now;
    if (gFopSys.fstat(fd, &now) == -1)
        return -1;
    if ((now.st_mode & 07777) == mode)
        return 0;
    return fop_retry([&] { return gFopSys.fchmod(fd, mode); });
}

} // namespace

int fop_copy_attributes(const FopItem &item, int from, const FopTarget &target, bool &owner)
{
    bool in_place = target.way == FopTarget::IN_PLACE;
    const bool had_owner = fop_has_owner(target.made, item.status);
    owner = had_owner || x_set_owner(target.fd, item.status);
    int acl_from = in_place ? FOP_ACL_NONE : target.replace ? target.old_fd : from;
    int set = fop_copy_xattrs(from, target.fd, acl_from);
    if (set == -1)
        return -1;
    mode_t mode = x_final_mode(target, owner);
    bool as_made = had_owner && set == 0 && mode == (target.made.st_mode & 07777);
    if (!in_place && !as_made && x_set_mode(target.fd, mode) == -1 && !fop_cannot_hold(errno))
        return -1;
    timespec times[2] = {item.status.st_atim, item.status.st_mtim};
    int timed = fop_retry([&] { return gFopSys.utimensat(target.fd, "", times, AT_EMPTY_PATH); });
    return timed == 0 || fop_cannot_hold(errno) ? 0 : -1;
}

} // namespace tav
