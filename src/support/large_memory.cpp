#include "support/large_memory.h"

#include <memory>

#include <sys/mman.h>

namespace morquill {

namespace {

/// In bytes, two huge pages of the usual size: a smaller block may contain no aligned one.
constexpr std::size_t worthwhile = std::size_t{4} << 20;
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

} // namespace morquill
