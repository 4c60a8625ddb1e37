// The names that a read has listed so far, so that one which the system delivers twice is found
// without looking at all the others. Holds hashes and indexes, no names. Private to the dir_ files.
#pragma once

#include "model/dir.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tav {

class DirSeen {
public:
    static uint32_t hash(std::string_view name);

    // Fetches what add will look at first; worth a call some work ahead of it.
    void prefetch(uint32_t hash) const;

    // Notes that name will stand at index count of the entries. False when one of those has it
    // already.
    bool add(const std::vector<DirEntry *> &entries, int count, std::string_view name,
             uint32_t hash);

private:
    struct Slot {
        uint32_t hash;
        uint32_t place; // index + 1; 0: free
    };
    void grow();

    std::vector<Slot> m_slots; // a power of two, at most half of them taken
    size_t m_taken = 0;
};

} // namespace tav
