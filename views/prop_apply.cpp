// Renaming, owner, group and permissions of one entry, in this order.
#include "views/prop_apply.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace tav {
namespace {

constexpr size_t TABLE_BUFFER = 16384; // bytes that a user's or group's record may take

int x_fail(std::string &message, const char *before, const std::string &name, const char *after)
{
    message = before + name + after;
    return -1;
}

// A text of digits only as an id; the last id there is means "none" to the system.
std::optional<uint32_t> x_number(const std::string &text)
{
    if (text.empty() || text.size() > 10 || text.find_first_not_of("0123456789") != text.npos)
        return {};
    const unsigned long long value = strtoull(text.c_str(), nullptr, 10);
    if (value >= UINT32_MAX)
        return {};
    return static_cast<uint32_t>(value);
}

std::optional<uid_t> x_user(const std::string &text)
{
    std::vector<char> buffer(TABLE_BUFFER);
    passwd record;
    passwd *found = nullptr;
    if (getpwnam_r(text.c_str(), &record, buffer.data(), buffer.size(), &found) == 0 && found)
        return found->pw_uid;
    return x_number(text);
}

std::optional<gid_t> x_group(const std::string &text)
{
    std::vector<char> buffer(TABLE_BUFFER);
    group record;
    group *found = nullptr;
    if (getgrnam_r(text.c_str(), &record, buffer.data(), buffer.size(), &found) == 0 && found)
        return found->gr_gid;
    return x_number(text);
}

// Renames without ever replacing. 0, or the error.
int x_rename(int directory, const std::string &from, const std::string &to)
{
    if (to.find('/') != to.npos)
        return EINVAL; // a name is no way into another directory
    if (renameat2(directory, from.c_str(), directory, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // A file system that cannot rename so: the check and the rename are two steps there.
    struct stat info;
    if (fstatat(directory, to.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return renameat(directory, from.c_str(), directory, to.c_str()) == 0 ? 0 : errno;
}

int x_apply_name(int directory, std::string &name, const PropChange &change, std::string &message)
{
    if (change.name.empty() || change.name == name)
        return 0;
    const int error = x_rename(directory, name, change.name);
    if (error == EEXIST)
        return x_fail(message, "File name '", change.name, "' already exists");
    if (error != 0)
        return x_fail(message, "Unable to rename '", change.name, "'.");
    name = change.name;
    return 0;
}

// Looks the owner and the group up, once.
int x_resolve(PropChange &change, std::string &message)
{
    if (!change.owner.empty() && !change.uid)
        change.uid = x_user(change.owner);
    if (!change.owner.empty() && !change.uid)
        return x_fail(message, "Invalid owner_id '", change.owner, "'");
    if (!change.group.empty() && !change.gid)
        change.gid = x_group(change.group);
    if (!change.group.empty() && !change.gid)
        return x_fail(message, "Invalid group '", change.group, "'");
    return 0;
}

int x_apply_ids(int directory, const std::string &name, const PropChange &change,
                const struct stat &now)
{
    const bool user = change.uid && *change.uid != now.st_uid;
    const bool group = change.gid && *change.gid != now.st_gid;
    if (!user && !group)
        return 0;
    const uid_t uid = user ? *change.uid : static_cast<uid_t>(-1);
    const gid_t gid = group ? *change.gid : static_cast<gid_t>(-1);
    return fchownat(directory, name.c_str(), uid, gid, 0);
}

// The sticky bit is not carried over: an entry that had it loses it with any change of its mode.
int x_apply_mode(int directory, const std::string &name, const PropChange &change, mode_t now)
{
    const mode_t wanted = (now & PROP_BITS & ~change.touched) | (change.bits & change.touched);
    if (wanted == (now & PROP_BITS))
        return 0;
    return fchmodat(directory, name.c_str(), wanted, 0);
}

} // namespace

int prop_apply(int directory, std::string &name, PropChange &change, std::string &message)
{
    if (x_apply_name(directory, name, change, message) != 0 || x_resolve(change, message) != 0)
        return -1;
    const bool ids = change.uid || change.gid;
    if (!ids && change.touched == 0)
        return 0;
    // The entry as it is now, not as it was when the dialog opened: others may have changed it
    // since.
    struct stat now;
    const bool there = fstatat(directory, name.c_str(), &now, 0) == 0;
    if (ids && (!there || x_apply_ids(directory, name, change, now) != 0))
        return x_fail(message, "Unable to change ownership of '", name, "'");
    if (change.touched && (!there || x_apply_mode(directory, name, change, now.st_mode) != 0))
        return x_fail(message, "Unable to change permissions of '", name, "'");
    return 0;
}

} // namespace tav
