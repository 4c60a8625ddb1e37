// Where entries come from. A large directory fills hundreds of megabytes with them, and having each
// page of that faulted in costs a third of what reading costs: so entries are cut from blocks that
// grow up to the size of a huge page, which the system then hands out in one piece. A freed entry
// waits in a list to be cut again; the blocks go when the last entry is gone. Main thread only.
#include "model/dir.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace tav {

uint64_t gDirAllocated = 0;

#ifdef TAV_SANITIZED

// The sanitizer watches each entry by itself.
DirEntry *dir_new_entry()
{
    gDirAllocated++;
    void *memory = calloc(1, sizeof(DirEntry));
    if (!memory)
        exit(1);
    return static_cast<DirEntry *>(memory);
}

void dir_free_entry(DirEntry *entry)
{
    free(entry->link);
    free(entry);
}

#else

namespace {

constexpr size_t FIRST_BLOCK = 64 * 1024;
constexpr size_t HUGE_PAGE = 2 * 1024 * 1024; // size and alignment; the largest block

// Stands at the beginning of its own block.
struct Block {
    Block *next;
    size_t size;
};

// A freed entry.
struct Waiting {
    Waiting *next;
};
static_assert(alignof(DirEntry) <= sizeof(Block));

Block *sBlocks = nullptr;    // the newest first
Waiting *sWaiting = nullptr; // freed entries
size_t sUsed = 0;            // bytes of the newest block that were cut off
size_t sLive = 0;            // entries that are out

void *x_map(size_t size)
{
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

// A block of a huge page's size that lies where one can be.
void *x_map_huge()
{
    auto memory = static_cast<char *>(x_map(2 * HUGE_PAGE));
    if (!memory)
        return nullptr;
    size_t before = (HUGE_PAGE - reinterpret_cast<uintptr_t>(memory) % HUGE_PAGE) % HUGE_PAGE;
    if (before > 0)
        munmap(memory, before);
    munmap(memory + before + HUGE_PAGE, HUGE_PAGE - before);
    madvise(memory + before, HUGE_PAGE, MADV_HUGEPAGE); // without them it is slower, no worse
    return memory + before;
}

void x_add_block()
{
    size_t size = sBlocks && sBlocks->size < HUGE_PAGE ? sBlocks->size * 2 : HUGE_PAGE;
    if (!sBlocks)
        size = FIRST_BLOCK;
    auto block = static_cast<Block *>(size == HUGE_PAGE ? x_map_huge() : x_map(size));
    if (!block)
        exit(1);
    block->next = sBlocks;
    block->size = size;
    sBlocks = block;
    sUsed = sizeof(Block);
}

void x_free_blocks()
{
    while (Block *block = sBlocks) {
        sBlocks = block->next;
        munmap(block, block->size);
    }
    sWaiting = nullptr;
    sUsed = 0;
}

} // namespace

DirEntry *dir_new_entry()
{
    gDirAllocated++;
    sLive++;
    if (Waiting *waiting = sWaiting) {
        sWaiting = waiting->next;
        return static_cast<DirEntry *>(memset(static_cast<void *>(waiting), 0, sizeof(DirEntry)));
    }
    if (!sBlocks || sUsed + sizeof(DirEntry) > sBlocks->size)
        x_add_block();
    void *memory = reinterpret_cast<char *>(sBlocks) + sUsed; // mapped memory is zero
    sUsed += sizeof(DirEntry);
    return static_cast<DirEntry *>(memory);
}

void dir_free_entry(DirEntry *entry)
{
    free(entry->link);
    auto waiting = reinterpret_cast<Waiting *>(entry);
    waiting->next = sWaiting;
    sWaiting = waiting;
    if (--sLive == 0)
        x_free_blocks();
}

#endif

} // namespace tav
