// Sorting a listing. Taken as one rule, the comparisons contradict themselves (2 < 10 < 1a < 2), so
// no library sort gets them. Instead:
//
// - By name: all-digit names are sorted by value, the others by bytes, and the two are merged by
// bytes.
// - By size, date, permissions, owner, group: a stable merge sort by a ready 32-bit key; then each
//   run of equal keys is sorted by name. Keys so far apart that differences wrap contradict
//   themselves too: they begin sorted by name, so that one order comes out of it.
// - By link: links by target, all else by name, and the two are merged by name.
// - By a comparison we do not know: the merge sort, asking it and then the names.
//
// All is sorted ascending, directories apart where they come first, and then turned round if need
// be. The result depends on the entries alone, not on the order in which they were read.
//
// A million entries take longer than a person likes to wait for a sign of life, so waiting events
// run meanwhile. What they may look at, the listing, holds every entry at each such moment, or some
// of them twice while the order is written back; never one that is gone.
#include "model/dir.h"

#include "app/config.h"
#include "model/dir_merge.h"
#include "model/dir_order.h"
#include "model/dir_pace.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <unordered_map>
#include <vector>

namespace tav {

namespace {

using Entries = DirEntry **;

struct Keyed {
    uint32_t key;
    DirEntry *entry;
};

constexpr size_t SHORT_RUN = 12; // items that are sorted by insertion

template <typename Item, typename Less>
void x_insert_sort(Item *items, size_t count, Less less)
{
    for (size_t i = 1; i < count; i++) {
        Item item = items[i];
        size_t at = i;
        for (; at > 0 && less(item, items[at - 1]); at--)
            items[at] = items[at - 1];
        items[at] = item;
    }
}

// A stable merge sort that never leaves its array, whatever less answers.
template <typename Item, typename Less>
void x_merge_sort(std::vector<Item> &items, Less less)
{
    const size_t count = items.size();
    for (size_t at = 0; at < count; at += SHORT_RUN) {
        const size_t run = std::min(SHORT_RUN, count - at);
        x_insert_sort(items.data() + at, run, less);
        dir_pace(run);
    }
    dir_merge_runs(items.data(), count, SHORT_RUN, less);
}

// Puts the entries that are first ahead of the others, in their order. The place behind them.
template <typename First>
Entries x_partition(Entries entries, size_t count, First first)
{
    std::vector<DirEntry *> others;
    others.reserve(count);
    Entries ahead = entries;
    for (size_t i = 0; i < count; i++) {
        dir_fetch(&entries[std::min(i + DIR_AHEAD, count - 1)]->stat);
        if (first(*entries[i]))
            *ahead++ = entries[i];
        else
            others.push_back(entries[i]);
        dir_pace(1);
    }
    std::copy(others.begin(), others.end(), ahead);
    return ahead;
}

bool x_name_less(const DirEntry *a, const DirEntry *b) { return dir_cmp_name(*a, *b) < 0; }
bool x_link_less(const DirEntry *a, const DirEntry *b) { return dir_cmp_link(*a, *b) < 0; }

bool x_differences_wrap(const std::vector<Keyed> &items)
{
    uint32_t low = UINT32_MAX;
    uint32_t high = 0;
    for (const Keyed &item : items) {
        low = std::min(low, item.key);
        high = std::max(high, item.key);
    }
    return low < high && high - low > INT32_MAX;
}

// By key, then the runs of equal keys by name.
void x_sort_keyed(Entries entries, std::vector<Keyed> &items)
{
    // The difference decides, not the order of the keys: far apart its sign turns over, meant so.
    x_merge_sort(items, [](const Keyed &a, const Keyed &b) {
        return static_cast<int32_t>(a.key - b.key) < 0;
    });
    size_t count = items.size();
    for (size_t i = 0; i < count; i++)
        entries[i] = items[i].entry;
    for (size_t from = 0, to = 0; from < count; from = to) {
        for (to = from + 1; to < count && items[to].key == items[from].key;)
            to++;
        dir_order_names(entries + from, to - from);
    }
}

template <typename Key>
std::vector<Keyed> x_keyed(Entries entries, size_t count, Key key)
{
    std::vector<Keyed> items(count);
    for (size_t i = 0; i < count; i++) {
        dir_fetch(&entries[std::min(i + DIR_AHEAD, count - 1)]->stat);
        items[i] = {key(*entries[i]), entries[i]};
        dir_pace(1);
    }
    return items;
}

template <typename Key>
void x_sort_by(Entries entries, size_t count, Key key)
{
    std::vector<Keyed> items = x_keyed(entries, count, key);
    if (x_differences_wrap(items)) {
        dir_order_names(entries, count);
        items = x_keyed(entries, count, key);
    }
    x_sort_keyed(entries, items);
}

// By the name of an id: each distinct id is looked up once and gets the rank of its name as key.
template <typename Id, typename Get>
void x_sort_by_owner(Entries entries, size_t count, Id id, Get get)
{
    std::unordered_map<uint32_t, uint32_t> ranks;
    for (size_t i = 0; i < count; i++) {
        ranks.try_emplace(id(*entries[i]), 0);
        dir_pace(1);
    }
    std::vector<std::pair<std::string, uint32_t>> names;
    for (const auto &each : ranks) {
        char name[DIR_NAME_SIZE];
        get(each.first, name);
        names.emplace_back(name, each.first);
    }
    std::sort(names.begin(), names.end());
    uint32_t rank = 0;
    for (size_t i = 0; i < names.size(); i++) {
        rank += i > 0 && names[i].first != names[i - 1].first;
        ranks[names[i].second] = rank;
    }
    x_sort_by(entries, count, [&](const DirEntry &entry) { return ranks.find(id(entry))->second; });
}

void x_sort_by_link(Entries entries, size_t count)
{
    Entries plain =
        x_partition(entries, count, [](const DirEntry &entry) { return entry.flags & DIR_LINK; });
    dir_order_names(plain, count - static_cast<size_t>(plain - entries));
    std::vector<DirEntry *> links(entries, plain);
    dir_order_names(links.data(), links.size());
    x_merge_sort(links, x_link_less);
    std::vector<DirEntry *> all = links;
    all.insert(all.end(), plain, entries + count);
    DirEntry *const *from = all.data();
    dir_merge(from, from + links.size(), from + count, entries, x_name_less);
}

void x_sort_by_any(Entries entries, size_t count, DirCompare compare)
{
    dir_order_names(entries, count);
    std::vector<DirEntry *> items(entries, entries + count);
    x_merge_sort(items, [compare](const DirEntry *a, const DirEntry *b) {
        int order = compare(*a, *b);
        return (order ? order : dir_cmp_name(*a, *b)) < 0;
    });
    std::copy(items.begin(), items.end(), entries);
}

void x_sort_ascending(Entries entries, size_t count, DirCompare compare)
{
    if (compare == dir_cmp_name)
        dir_order_names(entries, count);
    else if (compare == dir_cmp_size)
        x_sort_by(entries, count, dir_size32);
    else if (compare == dir_cmp_date)
        x_sort_by(entries, count,
                  [](const DirEntry &entry) { return static_cast<uint32_t>(entry.stat.st_mtime); });
    else if (compare == dir_cmp_permissions)
        x_sort_by(entries, count, [](const DirEntry &entry) { return entry.stat.st_mode; });
    else if (compare == dir_cmp_user)
        x_sort_by_owner(
            entries, count, [](const DirEntry &entry) { return entry.stat.st_uid; },
            dir_get_username);
    else if (compare == dir_cmp_group)
        x_sort_by_owner(
            entries, count, [](const DirEntry &entry) { return entry.stat.st_gid; },
            dir_get_groupname);
    else if (compare == dir_cmp_link)
        x_sort_by_link(entries, count);
    else
        x_sort_by_any(entries, count, compare);
}

void x_sort_group(Entries from, Entries to, DirCompare compare, int ascending)
{
    x_sort_ascending(from, static_cast<size_t>(to - from), compare);
    if (!ascending)
        std::reverse(from, to);
}

int x_difference(uint32_t a, uint32_t b) { return static_cast<int32_t>(a - b); }

} // namespace

int dir_cmp_dir(const DirEntry &a, const DirEntry &b)
{
    return static_cast<int>(dir_is_directory(b)) - static_cast<int>(dir_is_directory(a));
}

int dir_cmp_size(const DirEntry &a, const DirEntry &b)
{
    return x_difference(dir_size32(a), dir_size32(b));
}

int dir_cmp_date(const DirEntry &a, const DirEntry &b)
{
    return x_difference(static_cast<uint32_t>(a.stat.st_mtime),
                        static_cast<uint32_t>(b.stat.st_mtime));
}

int dir_cmp_permissions(const DirEntry &a, const DirEntry &b)
{
    return x_difference(a.stat.st_mode, b.stat.st_mode);
}

int dir_cmp_user(const DirEntry &a, const DirEntry &b)
{
    char names[2][DIR_NAME_SIZE];
    dir_get_username(a.stat.st_uid, names[0]);
    dir_get_username(b.stat.st_uid, names[1]);
    return strcmp(names[0], names[1]);
}

int dir_cmp_group(const DirEntry &a, const DirEntry &b)
{
    char names[2][DIR_NAME_SIZE];
    dir_get_groupname(a.stat.st_gid, names[0]);
    dir_get_groupname(b.stat.st_gid, names[1]);
    return strcmp(names[0], names[1]);
}

int dir_cmp_link(const DirEntry &a, const DirEntry &b)
{
    if (!(a.flags & DIR_LINK) || !(b.flags & DIR_LINK) || !a.link || !b.link)
        return 0;
    return strcmp(a.link, b.link);
}

void dir_sort(DirListing &listing, DirCompare compare, int ascending)
{
    if (!compare || listing.count < 2)
        return;
    gDirPaced = 0;
    Entries from = listing.entries.data();
    Entries to = from + listing.count;
    try {
        Entries files = from;
        if (gConfig->folders_first)
            files = x_partition(from, static_cast<size_t>(to - from), dir_is_directory);
        x_sort_group(from, files, compare, ascending);
        x_sort_group(files, to, compare, ascending);
    } catch (const std::bad_alloc &) {
        return; // no room for keys: the order stays what it is by now, every entry is still there
    }
}

} // namespace tav
