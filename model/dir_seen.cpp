// A hash table with open addressing over the indexes of the listed entries.
#include "model/dir_seen.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace tav {

namespace {

constexpr size_t FIRST_SLOTS = 1024;

} // namespace

// Eight bytes at a time, mixed by multiplication; names are short and no enemy's secret hangs on
// it.
uint32_t DirSeen::hash(std::string_view name)
{
    uint64_t mix = name.size() * 0x9E3779B97F4A7C15u;
    while (!name.empty()) {
        uint64_t word = 0;
        size_t size = name.size() < sizeof word ? name.size() : sizeof word;
        memcpy(&word, name.data(), size);
        mix = (mix ^ word) * 0xD6E8FEB86659FD93u;
        mix ^= mix >> 32;
        name.remove_prefix(size);
    }
    return static_cast<uint32_t>(mix ^ (mix >> 29));
}

void DirSeen::prefetch(uint32_t hash) const
{
    if (!m_slots.empty())
        __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
}

void DirSeen::grow()
{
    try {
        std::vector<Slot> wider(m_slots.empty() ? FIRST_SLOTS : m_slots.size() * 2);
        size_t mask = wider.size() - 1;
        for (const Slot &slot : m_slots) {
            if (!slot.place)
                continue;
            size_t at = slot.hash & mask;
            while (wider[at].place)
                at = (at + 1) & mask;
            wider[at] = slot;
        }
        m_slots.swap(wider);
    } catch (const std::bad_alloc &) {
        exit(1);
    }
}

bool DirSeen::add(const std::vector<DirEntry *> &entries, int count, std::string_view name,
                  uint32_t hash)
{
    if ((m_taken + 1) * 2 > m_slots.size())
        grow();
    size_t mask = m_slots.size() - 1;
    size_t at = hash & mask;
    for (; m_slots[at].place; at = (at + 1) & mask)
        if (m_slots[at].hash == hash && name == entries[m_slots[at].place - 1]->name)
            return false;
    m_slots[at] = {hash, static_cast<uint32_t>(count) + 1};
    m_taken++;
    return true;
}

} // namespace tav
