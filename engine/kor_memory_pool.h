#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// A bump allocator for the many small objects of a table read from a file
// (its records, their fields and their field arrays). Nothing is freed one by
// one: the whole pool goes with its table. Objects placed here are marked as
// pooled so that their owners run destructors without freeing storage.
class KOR_MEMORY_POOL
{
public:
    KOR_MEMORY_POOL() = default;
    KOR_MEMORY_POOL(const KOR_MEMORY_POOL&) = delete;
    KOR_MEMORY_POOL& operator=(const KOR_MEMORY_POOL&) = delete;
    ~KOR_MEMORY_POOL();

    // Inline for the common case: a table read asks ten times a record.
    void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t))
    {
        const std::size_t padding =
            (alignment - reinterpret_cast<std::uintptr_t>(m_current) % alignment) % alignment;
        if (m_current && padding + size <= m_left)
        {
            char* result = m_current + padding;
            m_current = result + size;
            m_left -= padding + size;
            return result;
        }
        return allocate_in_new_block(size, alignment);
    }
    std::size_t bytes_reserved() const { return m_reserved; }

private:
    void* allocate_in_new_block(std::size_t size, std::size_t alignment);

    struct BLOCK
    {
        char* start;
        std::size_t size;
        bool mapped; // from the system directly, in huge pages where it can
    };
    static BLOCK new_block(std::size_t size);

    // Blocks grow from the first size to the largest, so that a table of a
    // few records takes little and one of a million takes few blocks.
    static constexpr std::size_t FIRST_BLOCK_SIZE = std::size_t(1) << 16;
    static constexpr std::size_t LARGEST_BLOCK_SIZE = std::size_t(1) << 24;
    std::vector<BLOCK> m_blocks;
    std::size_t m_next_block_size = FIRST_BLOCK_SIZE;
    char* m_current = nullptr;
    std::size_t m_left = 0;
    std::size_t m_reserved = 0;
};
