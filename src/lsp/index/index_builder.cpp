#include "lsp/index/index_builder.h"

#include "support/text.h"
#include "taskdsl/base/substitute.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace morquill::lsp {

std::uint32_t IndexBuilder::add(NameKind kind, NameRole role, std::string_view name, std::uint32_t scope,
                                std::uint32_t qualifier) {
    if (name.empty()) {
        return noIndex;
    }
    index_.occurrences.push_back(
        {offsetOf(name.data()), static_cast<std::uint32_t>(name.size()), scope, qualifier, kind, role});
    return static_cast<std::uint32_t>(index_.occurrences.size() - 1);
}

void IndexBuilder::addKeys(std::string_view piece) {
    for (auto bracket = taskdsl::nextBracket(piece, 0); bracket.open != std::string_view::npos;
         bracket = taskdsl::nextBracket(piece, bracket.after)) {
        addKey(bracket.key);
    }
}

void IndexBuilder::addKey(std::string_view key) {
    for (auto loop = loops.rbegin(); loop != loops.rend(); ++loop) {
        const auto size = loop->name.size();
        if (key.size() > size + 1 && key.starts_with(loop->name) && key[size] == '.') {
            const auto name = loop->counts
                                  ? add(NameKind::loop, NameRole::reference, key.substr(0, size), loop->block)
                                  : add(NameKind::collection, NameRole::reference, key.substr(0, size));
            add(NameKind::itemKey, NameRole::reference, key.substr(size + 1), loop->block, name);
            return;
        }
    }
    if (parameters.contains(key)) {
        add(NameKind::parameter, NameRole::reference, key, fragmentBlock);
    } else {
        add(NameKind::key, NameRole::reference, key);
    }
}

std::uint32_t IndexBuilder::addWithKeys(NameKind kind, NameRole role, std::string_view name) {
    const auto number = add(kind, role, name);
    addKeys(name);
    return number;
}

void IndexBuilder::addComment(std::string_view rest) {
    rest = trim(rest);
    if (rest.starts_with('#')) {
        add(NameKind::comment, NameRole::word, rest);
    }
}

void IndexBuilder::addLink(FileLink::Kind kind, std::string_view name, std::string target,
                           std::uint32_t alias) {
    if (name.empty()) {
        return;
    }
    const auto begin = offsetOf(name.data());
    index_.links.push_back(
        {kind, begin, begin + static_cast<std::uint32_t>(name.size()), alias, std::move(target)});
}

std::uint32_t IndexBuilder::open(BlockKind kind, std::string_view line, std::uint32_t name) {
    const auto begin = offsetOf(line.data());
    index_.blocks.push_back(
        {kind, begin, begin + static_cast<std::uint32_t>(trim(line).size()), current(), name});
    open_.push_back(static_cast<std::uint32_t>(index_.blocks.size() - 1));
    noteFilled(line);
    return open_.back();
}

std::uint32_t IndexBuilder::addScope(BlockKind kind, std::string_view line) {
    const auto filled = filledEnd_;
    const auto block = open(kind, line);
    open_.pop_back();
    filledEnd_ = filled;
    return block;
}

void IndexBuilder::close() {
    if (!open_.empty()) {
        Block& block = index_.blocks[open_.back()];
        block.end = std::max(block.end, filledEnd_);
        open_.pop_back();
    }
}

void IndexBuilder::closeTo(std::uint32_t block) {
    while (!open_.empty() && open_.back() >= block) {
        close();
    }
}

void IndexBuilder::noteFilled(std::string_view line) noexcept {
    while (!line.empty() && isTrimmed(line.back())) {
        line.remove_suffix(1);
    }
    filledEnd_ = offsetOf(line.data() + line.size());
}

FileIndex IndexBuilder::take() {
    while (!open_.empty()) {
        close();
    }
    index_.blocks.front().end = static_cast<std::uint32_t>(text_.size());
    auto& all = index_.occurrences;
    std::vector<std::uint32_t> order(all.size());
    std::iota(order.begin(), order.end(), 0U);
    // Of two that begin at one place the longer one comes first: the other lies in it.
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return all[left].begin != all[right].begin ? all[left].begin < all[right].begin
                                                   : all[left].length > all[right].length;
    });
    std::vector<std::uint32_t> placeOf(all.size());
    std::vector<Occurrence> sorted;
    sorted.reserve(all.size());
    for (const auto number : order) {
        placeOf[number] = static_cast<std::uint32_t>(sorted.size());
        sorted.push_back(all[number]);
    }
    const auto renumber = [&placeOf](std::uint32_t& number) {
        number = number == noIndex ? noIndex : placeOf[number];
    };
    for (auto& occurrence : sorted) {
        renumber(occurrence.qualifier);
    }
    for (auto& block : index_.blocks) {
        renumber(block.name);
    }
    for (auto& link : index_.links) {
        renumber(link.alias);
    }
    all = std::move(sorted);
    index_.blocks.shrink_to_fit();
    return std::move(index_);
}

} // namespace morquill::lsp
