#include "lsp/index/file_index.h"

#include <algorithm>

namespace morquill::lsp {

std::size_t FileIndex::memory() const noexcept {
    std::size_t bytes = occurrences.capacity() * sizeof(Occurrence) + blocks.capacity() * sizeof(Block) +
                        links.capacity() * sizeof(FileLink);
    for (const auto& link : links) {
        bytes += link.target.capacity();
    }
    return bytes;
}

const Occurrence* occurrenceAt(const FileIndex& index, std::size_t offset) noexcept {
    const auto isText = [](const Occurrence& o) {
        return o.kind == NameKind::comment || o.kind == NameKind::string;
    };
    const auto& all = index.occurrences;
    const auto behind = std::upper_bound(all.begin(), all.end(), offset,
                                         [](std::size_t at, const Occurrence& o) { return at < o.begin; });
    const Occurrence* best = nullptr;
    // What lies in one another begins on one line: few steps back find all that reach the offset.
    constexpr std::size_t steps = 64;
    std::size_t taken = 0;
    for (auto at = behind; at != all.begin() && taken < steps; ++taken) {
        --at;
        if (at->end() < offset) {
            continue;
        }
        // A name that ends at the offset yields to one that begins there.
        const bool better =
            best == nullptr || (isText(*best) && !isText(*at)) ||
            (isText(*best) == isText(*at) && ((best->end() == offset && best->begin < at->begin) ||
                                              (at->end() > offset && at->length < best->length)));
        best = better ? &*at : best;
    }
    return best;
}

std::uint32_t blockAt(const FileIndex& index, std::size_t offset) noexcept {
    const auto& blocks = index.blocks;
    const auto behind = std::upper_bound(blocks.begin() + 1, blocks.end(), offset,
                                         [](std::size_t at, const Block& b) { return at < b.begin; });
    auto block = static_cast<std::uint32_t>(behind - blocks.begin()) - 1;
    while (block != 0 && blocks[block].end < offset) {
        block = blocks[block].parent;
    }
    return block;
}

std::uint32_t enclosing(const FileIndex& index, std::uint32_t block, BlockKind kind) noexcept {
    for (;; block = index.blocks[block].parent) {
        if (index.blocks[block].kind == kind) {
            return block;
        }
        if (block == 0) {
            return noIndex;
        }
    }
}

} // namespace morquill::lsp
