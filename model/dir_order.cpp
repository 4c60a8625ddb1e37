// Sorting by name, made for a million entries: eight bytes of each name stand beside its pointer as
// one number, so that most comparisons stay in the cache; runs that agree go on with the next
// eight.
#include "model/dir_order.h"

#include "model/dir_merge.h"
#include "model/dir_pace.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <string_view>
#include <vector>

namespace tav {

namespace {

constexpr size_t KEY_SIZE = sizeof(uint64_t); // bytes of a name in a key
constexpr size_t FEW = 8;                     // entries that are not worth keys
constexpr size_t LONG_RUN = 4096;             // names that the library's sort gets at once
constexpr int STRETCH_BITS = 9;               // about an entry
constexpr size_t STRETCHES = 1 << 20;         // at most
constexpr size_t VALUE_DIGITS = 19;           // digits of which a key can hold any

struct Named {
    uint64_t key; // of a number: its value; else bytes of the name, the first one highest
    DirEntry *entry;
};

bool x_is_number(const char *name)
{
    for (; *name; name++)
        if (*name < '0' || *name > '9')
            return false;
    return true;
}

// The digits that count.
std::string_view x_digits(const char *number)
{
    while (*number == '0')
        number++;
    return number;
}

// Any length: two numbers too long for a machine word are still told apart.
int x_cmp_numbers(const char *a, const char *b)
{
    std::string_view left = x_digits(a);
    std::string_view right = x_digits(b);
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

bool x_number_less(const DirEntry *a, const DirEntry *b)
{
    int order = x_cmp_numbers(a->name, b->name);
    return (order ? order : strcmp(a->name, b->name)) < 0;
}

bool x_bytes_less(const DirEntry *a, const DirEntry *b) { return strcmp(a->name, b->name) < 0; }

// Eight bytes of the name from depth on, the first one highest. The bytes behind a name's end are
// left out: they may be those of an older, longer name.
uint64_t x_key(const DirEntry *entry, size_t depth)
{
    static_assert(std::endian::native == std::endian::little);
    uint64_t key = 0;
    memcpy(&key, entry->name + depth, KEY_SIZE);
    uint64_t zeros =
        (key - 0x0101010101010101u) & ~key & 0x8080808080808080u; // lowest one is right
    if (zeros)
        key &= (zeros & -zeros) - 1;
    return __builtin_bswap64(key);
}

uint64_t x_value(const DirEntry *entry)
{
    std::string_view digits = x_digits(entry->name);
    if (digits.size() > VALUE_DIGITS)
        return UINT64_MAX;
    uint64_t value = 0;
    for (char digit : digits)
        value = value * 10 + static_cast<uint64_t>(digit - '0');
    return value;
}

// For comparisons that never contradict themselves; the order of what is equal is left open.
template <typename Less>
void x_sort_runs(Named *items, size_t count, Less less)
{
    for (size_t at = 0; at < count; at += LONG_RUN) {
        const size_t run = std::min(LONG_RUN, count - at);
        std::sort(items + at, items + at + run, less);
        dir_pace(run);
    }
    dir_merge_runs(items, count, LONG_RUN, less);
}

// Sorts names that agree in their first depth bytes.
void x_sort_bytes(Named *items, size_t count, size_t depth)
{
    if (count <= FEW || depth + KEY_SIZE > sizeof(DirEntry::name)) {
        x_sort_runs(items, count,
                    [](const Named &a, const Named &b) { return x_bytes_less(a.entry, b.entry); });
        return;
    }
    for (size_t i = 0; i < count; i++) {
        dir_fetch(items[std::min(i + DIR_AHEAD, count - 1)].entry->name + depth);
        items[i].key = x_key(items[i].entry, depth);
        dir_pace(1);
    }
    x_sort_runs(items, count, [](const Named &a, const Named &b) { return a.key < b.key; });
    for (size_t from = 0, to = 0; from < count; from = to) {
        for (to = from + 1; to < count && items[to].key == items[from].key;)
            to++;
        bool ended = (items[from].key & 0xFF) == 0;
        if (to - from > 1 && !ended)
            x_sort_bytes(items + from, to - from, depth + KEY_SIZE);
    }
}

void x_sort_numbers(std::vector<Named> &items)
{
    for (Named &item : items)
        item.key = x_value(item.entry);
    x_sort_runs(items.data(), items.size(), [](const Named &a, const Named &b) {
        return a.key != b.key ? a.key < b.key : x_number_less(a.entry, b.entry);
    });
}

} // namespace

int dir_cmp_name(const DirEntry &a, const DirEntry &b)
{
    if (!x_is_number(a.name) || !x_is_number(b.name))
        return strcmp(a.name, b.name);
    uint64_t left = x_value(&a);
    uint64_t right = x_value(&b);
    if (left <= INT32_MAX && right <= INT32_MAX)
        return static_cast<int>(left) - static_cast<int>(right);
    return x_cmp_numbers(a.name, b.name);
}

void dir_order_names(DirEntry **entries, size_t count)
{
    if (count < 2)
        return;
    std::vector<Named> numbers;
    std::vector<Named> others;
    others.reserve(count);
    for (size_t i = 0; i < count; i++) {
        dir_fetch(entries[std::min(i + DIR_AHEAD, count - 1)]->name);
        (x_is_number(entries[i]->name) ? numbers : others).push_back({0, entries[i]});
        dir_pace(1);
    }
    x_sort_numbers(numbers);
    x_sort_bytes(others.data(), others.size(), 0);
    size_t number = 0;
    size_t other = 0;
    for (size_t i = 0; i < count; i++) {
        bool take_number =
            other == others.size() ||
            (number < numbers.size() && x_bytes_less(numbers[number].entry, others[other].entry));
        dir_pace(1);
        entries[i] = take_number ? numbers[number++].entry : others[other++].entry;
    }
}

// Counting, as there are few stretches: the cost is two passes over the pointers.
void dir_order_addresses(DirEntry **entries, size_t count)
{
    if (count < 2)
        return;
    const auto address = [](const DirEntry *entry) { return reinterpret_cast<uintptr_t>(entry); };
    const auto [low, high] = std::minmax_element(
        entries, entries + count, [&](auto a, auto b) { return address(a) < address(b); });
    const uintptr_t last = address(*high);
    int shift = STRETCH_BITS;
    while ((last - address(*low)) >> shift >= STRETCHES)
        shift++;
    std::vector<size_t> begin(((last - address(*low)) >> shift) + 2);
    for (size_t i = 0; i < count; i++) {
        begin[((last - address(entries[i])) >> shift) + 1]++;
        dir_pace(1);
    }
    std::partial_sum(begin.begin(), begin.end(), begin.begin());
    const std::vector<DirEntry *> before(entries, entries + count);
    for (DirEntry *entry : before) {
        entries[begin[(last - address(entry)) >> shift]++] = entry;
        dir_pace(1);
    }
}

} // namespace tav
