#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Memory by the megabyte. A run over a large document spends half of its time on page faults: blocks that
/// are known to become large ask for huge pages, and what ends with the run is left to the system.
namespace morquill {

/// Asks for huge pages where the block is large enough to hold some; otherwise, and where the system has
/// none, does nothing. To be called before the block is written to.
void preferHugePages(const void* block, std::size_t bytes) noexcept;

/// Reserves room for `count` elements, in huge pages where they are many.
template <class List>
void reserveLarge(List& list, std::size_t count) {
    if (count > list.capacity()) {
        list.reserve(count);
        preferHugePages(list.data() + list.size(), (list.capacity() - list.size()) * sizeof(*list.data()));
    }
}

/// Holds a value until the end of the run without ever destroying it: for a document of many megabytes that
/// the one command of the run works on. Taking it apart piece by piece takes as long as printing it.
template <class T>
[[nodiscard]] T& keepUntilExit(T value) {
    static std::vector<T*>& kept = *new std::vector<T*>; // still reachable at the end: not leaked
    return *kept.emplace_back(new T(std::move(value)));
}

} // namespace morquill
