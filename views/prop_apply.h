// What "Done" of the properties dialog does to one entry. Knows no widget; system calls only.
#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <vector>

namespace tav {

constexpr mode_t PROP_BITS =
    06777; // the eleven bits that the dialog shows; the sticky bit is not among them

// What is asked for. The ids are looked up when the first entry needs them and kept for the next.
struct PropChange {
    std::string name;         // the new name; empty: keeps its name
    std::string owner;        // name or number; empty: keeps its owner
    std::string group;        // name or number; empty: keeps its group
    mode_t touched = 0;       // bits to be written, of PROP_BITS
    mode_t bits = 0;          // their values
    std::optional<uid_t> uid; // of owner, once looked up
    std::optional<gid_t> gid; // of group, once looked up
};

// What is asked of the system about users. Tests put users of their own here, so that what only the
// privileged user may do can be followed as anyone.
struct PropSystem {
    bool (*may_give_away)(); // whether this user may change owners
    std::optional<uid_t> (*user)(const char *name);
    std::optional<gid_t> (*group)(const char *name);
    int (*chown)(int directory, const char *name, uid_t uid, gid_t gid); // follows links
};
extern PropSystem gPropSystem;

// Applies the change to the entry called name of the directory (a descriptor). On success of a new
// name, name is that name. 0, or -1 with a message; what was done before the failure stays.
int prop_apply(int directory, std::string &name, PropChange &change, std::string &message);

// What went wrong with many entries.
struct PropReport {
    std::vector<std::string> messages; // of the first that failed, in the entries' order
    int failed = 0;                    // of all
};
constexpr size_t PROP_MESSAGES = 5; // so many messages are kept

// Applies the change, which has no new name, to all entries: names, each terminated by a NUL. An
// owner or group that does not exist fails once, for all, and changes nothing.
PropReport prop_apply_all(int directory, const std::string &names, PropChange &change);

} // namespace tav
