// What a copy has beside its content: owner, extended attributes, access lists, mode, times.
#include "fileops/fop_copy.h"

#include "fileops/fop_sys.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/xattr.h>
#include <vector>

namespace tav {
namespace {

constexpr size_t LIST_SIZE = 1024;
constexpr char ACL_NAME[] = "system.posix_acl_access";

// Descriptors may be O_PATH, which the f-calls do not take: those go by the descriptor's own name.
struct Self {
    char path[40];
    explicit Self(int fd) { std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd); }
};

ssize_t x_list(int fd, char *list, size_t size)
{
    ssize_t length = ::flistxattr(fd, list, size);
    return length == -1 && errno == EBADF ? ::listxattr(Self(fd).path, list, size) : length;
}

ssize_t x_get(int fd, const char *name, void *value, size_t size)
{
    ssize_t length = ::fgetxattr(fd, name, value, size);
    return length == -1 && errno == EBADF ? ::getxattr(Self(fd).path, name, value, size) : length;
}

void x_set(int fd, const char *name, const void *value, size_t size)
{
    if (::fsetxattr(fd, name, value, size, 0) == -1 && errno == EBADF)
        ::setxattr(Self(fd).path, name, value, size, 0);
}

void x_copy_one(int from, int to, const char *name)
{
    ssize_t length = x_get(from, name, nullptr, 0);
    if (length < 0)
        return;
    std::vector<char> value(static_cast<size_t>(length) + 1);
    length = x_get(from, name, value.data(), value.size());
    if (length >= 0)
        x_set(to, name, value.data(), static_cast<size_t>(length));
}

// The names of all attributes, one after another.
std::vector<char> x_names(int from)
{
    std::vector<char> list(LIST_SIZE);
    ssize_t length = x_list(from, list.data(), list.size());
    for (int turn = 0; turn < 3 && length == -1 && errno == ERANGE; turn++) {
        ssize_t wanted = x_list(from, nullptr, 0);
        list.resize(static_cast<size_t>(wanted > 0 ? wanted : 0) + LIST_SIZE);
        length = x_list(from, list.data(), list.size());
    }
    list.resize(static_cast<size_t>(length > 0 ? length : 0));
    return list;
}

bool x_set_owner(const FopItem &item, int fd, const struct stat &made)
{
    const struct stat &want = item.status;
    if (made.st_uid == want.st_uid && made.st_gid == want.st_gid)
        return true;
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

int fop_copy_xattrs(int from, int to, int acl_from)
{
    std::vector<char> names = x_names(from);
    int count = 0;
    for (size_t at = 0; at < names.size(); at += std::strlen(names.data() + at) + 1, count++) {
        const char *name = names.data() + at;
        if (acl_from == from || std::strcmp(name, ACL_NAME) != 0)
            x_copy_one(from, to, name);
    }
    if (acl_from != FOP_ACL_NONE && acl_from != from)
        x_copy_one(acl_from, to, ACL_NAME);
    return count;
}

bool fop_copy_attributes(const FopItem &item, int from, const FopTarget &target)
{
    bool in_place = target.way == FopTarget::IN_PLACE;
    bool owner = x_set_owner(item, target.fd, target.made);
    int acl_from = in_place ? FOP_ACL_NONE : target.replace ? target.old_fd : from;
    fop_copy_xattrs(from, target.fd, acl_from);
    mode_t mode = x_final_mode(target, owner);
    // The owner and an access list may have changed the mode.
    struct stat now;
    if (!in_place && gFopSys.fstat(target.fd, &now) == 0 && (now.st_mode & 07777) != mode)
        fop_retry([&] { return gFopSys.fchmod(target.fd, mode); });
    timespec times[2] = {item.status.st_atim, item.status.st_mtim};
    fop_retry([&] { return gFopSys.utimensat(target.fd, "", times, AT_EMPTY_PATH); });
    return !owner;
}

} // namespace tav
