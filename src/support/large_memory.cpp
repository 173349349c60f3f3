#include "support/large_memory.h"

#include <cstdint>

#include <sys/mman.h>

namespace morquill {

namespace {

/// Two huge pages of the usual size: a smaller block may hold none that is aligned.
constexpr std::size_t worthwhile = std::size_t{4} << 20;
constexpr std::uintptr_t pageSize = 4096; // the least there is: the system rounds the rest itself

} // namespace

void preferHugePages(const void* block, std::size_t bytes) noexcept {
    if (bytes < worthwhile) {
        return;
    }
    const auto begin = reinterpret_cast<std::uintptr_t>(block);
    const auto first = (begin + pageSize - 1) / pageSize * pageSize;
    // An answer of no is as good: the pages are small then.
    (void)::madvise(reinterpret_cast<void*>(first), begin + bytes - first, MADV_HUGEPAGE);
}

} // namespace morquill
