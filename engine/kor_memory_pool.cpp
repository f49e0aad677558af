#include "kor_memory_pool.h"

#include <QtGlobal>

#include <cstdint>
#include <cstdlib>
#include <new>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace
{
const std::size_t HUGE_PAGE = std::size_t(2) << 20;
} // namespace

KOR_MEMORY_POOL::~KOR_MEMORY_POOL()
{
    for (const BLOCK& block : m_blocks)
    {
#ifdef Q_OS_LINUX
        if (block.mapped)
        {
            ::munmap(block.start, block.size);
            continue;
        }
#endif
        std::free(block.start);
    }
}

KOR_MEMORY_POOL::BLOCK KOR_MEMORY_POOL::new_block(std::size_t size)
{
#ifdef Q_OS_LINUX
    // Large blocks are mapped on huge-page boundaries and offered huge pages:
    // filling half a gigabyte of records otherwise costs a page fault every
    // four kilobytes, a third of the time of loading a large table.
    if (size >= HUGE_PAGE && size % HUGE_PAGE == 0)
    {
        void* area =
            ::mmap(nullptr, size + HUGE_PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (area != MAP_FAILED)
        {
            char* start = static_cast<char*>(area);
            const std::size_t head =
                (HUGE_PAGE - reinterpret_cast<std::uintptr_t>(start) % HUGE_PAGE) % HUGE_PAGE;
            if (head > 0)
                ::munmap(start, head);
            if (HUGE_PAGE - head > 0)
                ::munmap(start + head + size, HUGE_PAGE - head);
            start += head;
            ::madvise(start, size, MADV_HUGEPAGE);
            return BLOCK{start, size, true};
        }
    }
#endif
    char* start = static_cast<char*>(std::malloc(size));
    if (!start)
        throw std::bad_alloc();
    return BLOCK{start, size, false};
}

void* KOR_MEMORY_POOL::allocate_in_new_block(std::size_t size, std::size_t alignment)
{
    // Large requests get a block of their own so the current block keeps
    // serving small ones.
    if (size + alignment > m_next_block_size / 4)
    {
        const BLOCK block = new_block(size + alignment);
        m_blocks.push_back(block);
        m_reserved += block.size;
        const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block.start);
        return block.start + (alignment - start % alignment) % alignment;
    }
    const BLOCK block = new_block(m_next_block_size);
    m_blocks.push_back(block);
    m_reserved += block.size;
    if (m_next_block_size < LARGEST_BLOCK_SIZE)
        m_next_block_size *= 2;
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block.start);
    const std::size_t padding = (alignment - start % alignment) % alignment;
    char* result = block.start + padding;
    m_current = result + size;
    m_left = block.size - padding - size;
    return result;
}
