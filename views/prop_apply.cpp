// Renaming, owner, group and permissions of one entry, in this order. Many entries are shared out
// among a few threads: each needs two system calls, its state and its change, and these wait for
// nothing but the file system. The threads end before the call returns and touch nothing shared.
#include "views/prop_apply.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace tav {
namespace {

constexpr size_t RECORD_ROOM = 16384;    // bytes that a user's or group's record usually fits in
constexpr size_t RECORD_MOST = 1U << 26; // and beyond which it is not looked at
constexpr size_t SHARES_MOST = 4;        // threads that work on many entries
constexpr size_t SHARE_LEAST = 16384;    // bytes of names that are worth a thread

int x_fail(std::string &message, const char *before, const std::string &name, const char *after)
{
    message = before + name + after;
    return -1;
}

// A text of digits only as an id; the last id there is means "none" to the system.
std::optional<uint32_t> x_number(const std::string &text)
{
    if (text.empty() || text.find_first_not_of("0123456789") != text.npos)
        return {};
    const unsigned long long value = strtoull(text.c_str(), nullptr, 10);
    if (value >= UINT32_MAX)
        return {};
    return static_cast<uint32_t>(value);
}

// Asks the system's table for the record of that name, with more room until it fits: a group may
// have any number of members. Null when there is none.
template <typename Record, typename Ask>
Record *x_record(Ask ask, const char *name, Record &record, std::vector<char> &room)
{
    Record *found = nullptr;
    for (size_t size = RECORD_ROOM; size <= RECORD_MOST; size *= 4) {
        room.resize(size);
        if (ask(name, &record, room.data(), room.size(), &found) != ERANGE)
            return found;
    }
    return nullptr;
}

std::optional<uid_t> x_system_user(const char *name)
{
    std::vector<char> room;
    passwd record;
    const passwd *found = x_record(getpwnam_r, name, record, room);
    return found ? std::optional(found->pw_uid) : std::nullopt;
}

std::optional<gid_t> x_system_group(const char *name)
{
    std::vector<char> room;
    group record;
    const group *found = x_record(getgrnam_r, name, record, room);
    return found ? std::optional(found->gr_gid) : std::nullopt;
}

bool x_is_privileged() { return geteuid() == 0; }

int x_system_chown(int directory, const char *name, uid_t uid, gid_t gid)
{
    return fchownat(directory, name, uid, gid, 0);
}

std::optional<uid_t> x_user(const std::string &text)
{
    const std::optional<uid_t> named = gPropSystem.user(text.c_str());
    return named ? named : x_number(text);
}

std::optional<gid_t> x_group(const std::string &text)
{
    const std::optional<gid_t> named = gPropSystem.group(text.c_str());
    return named ? named : x_number(text);
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

// Takes the entry as it was and leaves it as it is then: the system takes set-user-id and
// set-group-id from what changes hands.
int x_apply_ids(int directory, const std::string &name, const PropChange &change, struct stat &now)
{
    const bool user = change.uid && *change.uid != now.st_uid;
    const bool group = change.gid && *change.gid != now.st_gid;
    if (!user && !group)
        return 0;
    const uid_t uid = user ? *change.uid : static_cast<uid_t>(-1);
    const gid_t gid = group ? *change.gid : static_cast<gid_t>(-1);
    if (gPropSystem.chown(directory, name.c_str(), uid, gid) != 0)
        return -1;
    return fstatat(directory, name.c_str(), &now, 0);
}

// The sticky bit is not carried over: an entry that had it loses it with any change of its mode.
int x_apply_mode(int directory, const std::string &name, const PropChange &change, mode_t now)
{
    const mode_t wanted = (now & PROP_BITS & ~change.touched) | (change.bits & change.touched);
    if (wanted == (now & PROP_BITS))
        return 0;
    return fchmodat(directory, name.c_str(), wanted, 0);
}

// Owner, group and mode of the entry, the ids being known.
int x_apply_attributes(int directory, const std::string &name, const PropChange &change,
                       std::string &message)
{
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

void x_note(PropReport &report, std::string message)
{
    if (report.failed++ < static_cast<int>(PROP_MESSAGES))
        report.messages.push_back(std::move(message));
}

// Applies the change to a share of the names.
PropReport x_apply_share(int directory, std::string_view names, const PropChange &change)
{
    PropReport report;
    std::string name, message;
    while (!names.empty()) {
        name = names.data();
        if (x_apply_attributes(directory, name, change, message) != 0)
            x_note(report, message);
        names.remove_prefix(name.size() + 1);
    }
    return report;
}

// Cuts the names into about so many shares, each of whole names.
std::vector<std::string_view> x_shares(std::string_view names, size_t count)
{
    std::vector<std::string_view> shares;
    const size_t length = names.size() / count + 1;
    while (!names.empty()) {
        const size_t end = names.find('\0', std::min(length, names.size()) - 1) + 1;
        shares.push_back(names.substr(0, end));
        names.remove_prefix(end);
    }
    return shares;
}

// Runs work(0) ... work(count - 1) at the same time, the first on this thread. A thread that cannot
// be had costs time only. Signals stay this thread's.
template <typename Work>
void x_run_all(size_t count, const Work &work)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::vector<std::thread> threads;
    for (size_t i = 1; i < count; i++) {
        try {
            threads.emplace_back(work, i);
        } catch (const std::system_error &) {
            work(i);
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    work(0);
    for (std::thread &thread : threads)
        thread.join();
}

size_t x_share_count(const std::string &names)
{
    const size_t most = std::clamp<size_t>(std::thread::hardware_concurrency(), 1, SHARES_MOST);
    return std::clamp<size_t>(names.size() / SHARE_LEAST, 1, most);
}

} // namespace

PropSystem gPropSystem = {x_is_privileged, x_system_user, x_system_group, x_system_chown};

int prop_apply(int directory, std::string &name, PropChange &change, std::string &message)
{
    if (x_apply_name(directory, name, change, message) != 0 || x_resolve(change, message) != 0)
        return -1;
    return x_apply_attributes(directory, name, change, message);
}

PropReport prop_apply_all(int directory, const std::string &names, PropChange &change)
{
    PropReport whole;
    std::string message;
    if (x_resolve(change, message) != 0) {
        x_note(whole, message);
        return whole;
    }
    if (names.empty())
        return whole;
    const std::vector<std::string_view> shares = x_shares(names, x_share_count(names));
    std::vector<PropReport> reports(shares.size());
    x_run_all(shares.size(),
              [&](size_t i) { reports[i] = x_apply_share(directory, shares[i], change); });
    for (const PropReport &report : reports) {
        for (const std::string &each : report.messages) {
            if (whole.messages.size() < PROP_MESSAGES)
                whole.messages.push_back(each);
        }
        whole.failed += report.failed;
    }
    return whole;
}

} // namespace tav
