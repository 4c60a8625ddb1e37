// Allocation pool: the blocks of one owner, freed together. Not locked: one thread at a time.
#pragma once

#include <cstddef>

namespace tav {

// A pool holds blocks that came from malloc. pointers[0, count) are in use.
struct AllocPool {
    size_t count;    // blocks held
    size_t capacity; // slots: 1024 at first, then one more whenever it is full
    size_t reserved; // slots really there, doubled, so that adding stays cheap in large pools
    void **pointers;
};

constexpr size_t ALLOC_START = 1024;

// A new empty pool, or null when memory is out.
AllocPool *alloc_start();

// Hands a block to the pool and returns it. Null when either is null (so that a failed malloc
// handed straight on reads as out of memory) or the pool cannot grow; the block is then freed.
void *alloc_add(AllocPool *pool, void *block);

// Resizes a block of the pool; the new address, or null when that failed (the old block stays). A
// block that the pool does not hold is only added, with its size as it is. Null when either is
// null.
void *alloc_realloc(AllocPool *pool, void *block, size_t size);

// Frees every block and the pool. Null is ignored.
void alloc_free(AllocPool *pool);

} // namespace tav
