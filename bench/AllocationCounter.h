#ifndef TORVIXML_BENCH_ALLOCATIONCOUNTER_H
#define TORVIXML_BENCH_ALLOCATIONCOUNTER_H

// Heap accounting for the memory figures. The program replaces malloc,
// calloc, realloc, free and the aligned allocators with thin wrappers around
// glibc's own; operator new and Qt's containers allocate through them, so
// every heap block of the library, of Qt and of the benchmark is seen. The
// wrappers count only between Start() and Stop() and cost one predictable
// branch otherwise. The program measures on one thread only.

#include <cstdint>

namespace Bench {

struct HeapCounts
{
    std::uint64_t allocations = 0;   ///< blocks handed out (malloc, calloc, realloc, aligned)
    std::uint64_t allocatedBytes = 0; ///< usable size of those blocks
    std::int64_t liveBytes = 0;      ///< usable bytes handed out minus usable bytes freed
    std::int64_t liveBlocks = 0;     ///< blocks handed out minus blocks freed
};

namespace Heap {

/// Starts counting from zero.
void Start();
/// The counts since Start(), counting goes on.
HeapCounts Now();
/// Stops counting and returns the counts since Start().
HeapCounts Stop();

} // namespace Heap
} // namespace Bench

#endif
