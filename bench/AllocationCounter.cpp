#include "AllocationCounter.h"

#include <cerrno>
#include <cstddef>
#include <malloc.h>

// glibc's own allocator entry points, which the replacements below forward to.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

bool g_counting = false;
Bench::HeapCounts g_counts;

inline void Added(void* block)
{
    if (g_counting && block) {
        const std::size_t size = malloc_usable_size(block);
        ++g_counts.allocations;
        g_counts.allocatedBytes += size;
        g_counts.liveBytes += std::int64_t(size);
        ++g_counts.liveBlocks;
    }
}

inline void Removed(void* block)
{
    if (g_counting && block) {
        g_counts.liveBytes -= std::int64_t(malloc_usable_size(block));
        --g_counts.liveBlocks;
    }
}

} // namespace

// The executable is built with hidden visibility; the replacements must be
// visible to the shared libraries (Qt, TorviXML, libstdc++) to take effect.
#define BENCH_EXPORT __attribute__((visibility("default")))

extern "C" {

BENCH_EXPORT void* malloc(std::size_t size) noexcept
{
    void* block = __libc_malloc(size);
    Added(block);
    return block;
}

BENCH_EXPORT void* calloc(std::size_t count, std::size_t size) noexcept
{
    void* block = __libc_calloc(count, size);
    Added(block);
    return block;
}

BENCH_EXPORT void* realloc(void* block, std::size_t size) noexcept
{
    Removed(block);
    void* moved = __libc_realloc(block, size);
    if (moved)
        Added(moved);
    else if (block && size != 0)
        Added(block); // failed: the old block stays
    return moved;
}

BENCH_EXPORT void free(void* block) noexcept
{
    Removed(block);
    __libc_free(block);
}

BENCH_EXPORT void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    void* block = __libc_memalign(alignment, size);
    Added(block);
    return block;
}

BENCH_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return memalign(alignment, size);
}

BENCH_EXPORT int posix_memalign(void** result, std::size_t alignment, std::size_t size) noexcept
{
    void* block = memalign(alignment, size);
    if (!block)
        return ENOMEM;
    *result = block;
    return 0;
}

} // extern "C"

namespace Bench {
namespace Heap {

void Start()
{
    g_counts = HeapCounts();
    g_counting = true;
}

HeapCounts Now()
{
    return g_counts;
}

HeapCounts Stop()
{
    g_counting = false;
    return g_counts;
}

} // namespace Heap
} // namespace Bench
