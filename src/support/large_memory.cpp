#include "support/large_memory.h"

#include <cstdlib>
#include <memory>

#include <malloc.h>
#include <sys/mman.h>

namespace morquill {

namespace {

/// In bytes, two huge pages of the usual size: a smaller block may contain no aligned one.
constexpr int worthwhile = 4 << 20;
constexpr std::size_t pageSize = 4096; // the smallest there is: the system rounds up to its own

} // namespace

void preferHugePages(void* block, std::size_t bytes) noexcept {
    if (bytes < worthwhile) {
        return;
    }
    if (std::align(pageSize, worthwhile - pageSize, block, bytes) != nullptr) {
        // A refusal does no harm: the pages are small then.
        (void)::madvise(block, bytes, MADV_HUGEPAGE);
    }
}

void reserveHeap(std::size_t bytes) noexcept {
    if (bytes < worthwhile) {
        return;
    }
    // The C library hands out small blocks from the end of its heap, which grows page by page. One block of
    // the whole size, taken from there and given back, leaves the heap grown, as long as nothing is trimmed.
    ::mallopt(M_TRIM_THRESHOLD, -1);
    ::mallopt(M_MMAP_THRESHOLD, worthwhile); // larger ones have pages of their own, and go back at once
    ::mallopt(M_MMAP_MAX, 0);
    void* const block = std::malloc(bytes);
    preferHugePages(block, block == nullptr ? 0 : bytes);
    std::free(block);
    ::mallopt(M_MMAP_MAX, 1 << 16); // as it is by default
}

} // namespace morquill
