// Long work on the listing lets waiting events run now and then. Private to the dir_ files; main
// thread only.
#pragma once

#include <cstddef>

namespace tav {

constexpr size_t DIR_PACE_EVERY = 4096; // entries between two looks at the waiting events

extern size_t gDirPaced; // entries since the last look

void dir_pace_now(); // asks gDirHooks.pending; this work is not stopped by its answer

// So many entries were handled.
inline void dir_pace(size_t entries)
{
    gDirPaced += entries;
    if (gDirPaced >= DIR_PACE_EVERY)
        dir_pace_now();
}

// Entries lie all over the memory of a large listing: what is looked at a few entries on is asked
// for early.
constexpr size_t DIR_AHEAD = 8;
inline void dir_fetch(const void *memory) { __builtin_prefetch(memory); }

} // namespace tav
