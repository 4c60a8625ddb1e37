// Merging of sorted runs, which stays inside its arrays whatever the comparison answers and lets
// waiting events run on its way. Private to the dir_ files.
#pragma once

#include "model/dir_pace.h"

#include <algorithm>
#include <vector>

namespace tav {

// Merges two neighbouring runs into to; the first goes ahead where neither is less.
template <typename Item, typename Less>
void dir_merge(const Item *first, const Item *middle, const Item *end, Item *to, Less less)
{
    const Item *second = middle;
    while (first < middle && second < end) {
        // So many steps neither run can come to its end: they need no test and no jump.
        const auto left = static_cast<size_t>(std::min(middle - first, end - second));
        const size_t steps = std::min(left, DIR_PACE_EVERY);
        for (size_t i = 0; i < steps; i++) {
            const bool take_second = less(*second, *first);
            *to++ = *(take_second ? second : first);
            second += take_second;
            first += !take_second;
        }
        dir_pace(steps);
    }
    to = std::copy(first, middle, to);
    std::copy(second, end, to);
}

// Sorts items that stand in sorted runs of that length already. Keeps the order of what is equal.
template <typename Item, typename Less>
void dir_merge_runs(Item *items, size_t count, size_t run, Less less)
{
    if (count <= run)
        return;
    std::vector<Item> spare(count);
    Item *from = items;
    Item *to = spare.data();
    for (; run < count; run *= 2) {
        for (size_t at = 0; at < count; at += 2 * run)
            dir_merge(from + at, from + std::min(at + run, count),
                      from + std::min(at + 2 * run, count), to + at, less);
        std::swap(from, to);
    }
    if (from != items)
        std::copy(from, from + count, items);
}

} // namespace tav
