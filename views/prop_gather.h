// What the properties dialog shows of the selected entries: one pass over the listing. Knows no
// widget.
#pragma once

#include "model/dir.h"

#include <string>

namespace tav {

struct PropSummary {
    int count = 0;         // selected entries
    int directories = 0;   // of these
    int one = -1;          // the index when there is a single one, else -1
    std::string names;     // all names, each terminated by a NUL, in list order
    std::string first;     // the first name
    std::string joined;    // names joined by ", ", as many as fit
    uint64_t size = 0;     // of the files, bytes
    mode_t common = 07777; // mode bits that every entry has
    int64_t uid = -1;      // the owner when all agree, else -1
    int64_t gid = -1;      // the group when all agree, else -1
};

constexpr size_t PROP_JOINED_LIMIT =
    255; // the joined names stay below, each counted with two bytes more

PropSummary prop_gather(const DirListing &listing);

// "(2 items: 1 directory, 1 file)"
std::string prop_comment(const PropSummary &summary);

// The size of one entry, with "," every three digits.
std::string prop_size(uint64_t size);

// The sum of many, in the units of the status bar; beyond its range in those of the totals.
std::string prop_total(uint64_t size);

} // namespace tav
