#include "kor_memory_pool.h"

#include <cstdint>
#include <cstdlib>
#include <new>

KOR_MEMORY_POOL::~KOR_MEMORY_POOL()
{
    for (char* block : m_blocks)
        std::free(block);
}

void* KOR_MEMORY_POOL::allocate_in_new_block(std::size_t size, std::size_t alignment)
{
    // Large requests get a block of their own so the current block keeps
    // serving small ones.
    const std::size_t block_size = size + alignment > BLOCK_SIZE / 4 ? size + alignment : BLOCK_SIZE;
    char* block = static_cast<char*>(std::malloc(block_size));
    if (!block)
        throw std::bad_alloc();
    m_blocks.push_back(block);
    m_reserved += block_size;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block);
    const std::size_t padding = (alignment - start % alignment) % alignment;
    if (block_size != BLOCK_SIZE)
        return block + padding;
    char* result = block + padding;
    m_current = result + size;
    m_left = block_size - padding - size;
    return result;
}
