#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Memory by the megabyte. A run over a large document would spend half its
/// time on page faults, so blocks that are known to become large ask for
/// huge pages, and what lasts to the end of the run is left to the system.
namespace morquill {

/// Asks for huge pages when the block is large enough to hold some; does nothing otherwise, or when the
/// system has none. To be called before the block is written to; `bytes` is its size.
void preferHugePages(void* block, std::size_t bytes) noexcept;

/// Reserves room for `count` elements, in huge pages when there are many; throws as `reserve` does.
template <class List>
void reserveLarge(List& list, std::size_t count) {
    if (count > list.capacity()) {
        list.reserve(count);
        preferHugePages(list.data() + list.size(), (list.capacity() - list.size()) * sizeof(*list.data()));
    }
}

/// Makes room in the heap for about that many bytes in small blocks, in huge pages: for a document whose
/// records, each small, will fill many megabytes. Does nothing for less, or when there is no room.
void reserveHeap(std::size_t bytes) noexcept;

/// Keeps a value until the end of the run without ever destroying it. Meant for a document of many megabytes,
/// the one that the run is about: destroying it piece by piece takes as long as printing it.
template <class T>
[[nodiscard]] T& keepUntilExit(T value) {
    static std::vector<T*>& kept = *new std::vector<T*>; // reachable to the end, so no leak is reported
    return *kept.emplace_back(new T(std::move(value)));
}

} // namespace morquill
