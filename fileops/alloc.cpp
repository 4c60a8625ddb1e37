// Allocation pool: see alloc.h.
#include "fileops/alloc.h"

#include <cstdlib>

namespace tav {

AllocPool *alloc_start()
{
    auto *pool = static_cast<AllocPool *>(std::malloc(sizeof(AllocPool)));
    if (!pool)
        return nullptr;
    *pool = {0, ALLOC_START, ALLOC_START, nullptr};
    pool->pointers = static_cast<void **>(std::malloc(ALLOC_START * sizeof(void *)));
    if (pool->pointers)
        return pool;
    std::free(pool);
    return nullptr;
}

void *alloc_add(AllocPool *pool, void *block)
{
    if (!pool || !block)
        return nullptr;
    if (pool->count == pool->reserved) {
        size_t more = pool->reserved * 2;
        void *grown = std::realloc(pool->pointers, more * sizeof(void *));
        if (!grown) {
            std::free(block);
            return nullptr;
        }
        pool->pointers = static_cast<void **>(grown);
        pool->reserved = more;
    }
    if (pool->count == pool->capacity)
        pool->capacity++;
    pool->pointers[pool->count++] = block;
    return block;
}

void *alloc_realloc(AllocPool *pool, void *block, size_t size)
{
    if (!pool || !block)
        return nullptr;
    // What is resized was mostly added late, so the search begins at the end.
    for (size_t i = pool->count; i-- > 0;) {
        if (pool->pointers[i] != block)
            continue;
        void *grown = std::realloc(block, size ? size : 1);
        if (grown)
            pool->pointers[i] = grown;
        return grown;
    }
    return alloc_add(pool, block);
}

void alloc_free(AllocPool *pool)
{
    if (!pool)
        return;
    for (size_t i = 0; i < pool->count; i++)
        std::free(pool->pointers[i]);
    std::free(pool->pointers);
    std::free(pool);
}

} // namespace tav
