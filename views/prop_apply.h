// What "Done" of the properties dialog does to one entry. Knows no widget; system calls only.
#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

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

// Applies the change to the entry called name of the directory (a descriptor). On success of a new
// name, name is that name. 0, or -1 with a message; what was done before the failure stays.
int prop_apply(int directory, std::string &name, PropChange &change, std::string &message);

} // namespace tav
