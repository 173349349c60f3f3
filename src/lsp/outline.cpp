#include "lsp/outline.h"

#include "lsp/base/uri.h"
#include "support/file.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace morquill::lsp {

namespace {

/// Kinds of symbols of the protocol.
enum class SymbolKind : int {
    module = 2,
    nameSpace = 3,
    classKind = 5,
    property = 7,
    enumeration = 10,
    function = 12,
    variable = 13,
    constant = 14,
    array = 18,
    object = 19,
};

struct BlockSymbolRow {
    BlockKind block;
    SymbolKind kind;
    std::string_view detail;
};
constexpr std::array<BlockSymbolRow, 10> blockSymbols{{
    {BlockKind::prelude, SymbolKind::module, "prelude"},
    {BlockKind::defines, SymbolKind::nameSpace, ""},
    {BlockKind::matrix, SymbolKind::enumeration, ""},
    {BlockKind::section, SymbolKind::variable, ""},
    {BlockKind::task, SymbolKind::classKind, "task"},
    {BlockKind::directive, SymbolKind::property, ""},
    {BlockKind::plot, SymbolKind::object, "plot"},
    {BlockKind::derive, SymbolKind::function, "derive"},
    {BlockKind::loop, SymbolKind::array, "@foreach"},
    {BlockKind::fragment, SymbolKind::function, "fragment"},
}};

struct NameSymbolRow {
    NameKind name;
    SymbolKind kind;
};
constexpr std::array<NameSymbolRow, 6> nameSymbols{{
    {NameKind::define, SymbolKind::constant},
    {NameKind::axis, SymbolKind::enumeration},
    {NameKind::let, SymbolKind::variable},
    {NameKind::formula, SymbolKind::function},
    {NameKind::table, SymbolKind::array},
    {NameKind::emitted, SymbolKind::variable},
}};

/// A symbol before it is written, with its children.
struct Symbol {
    std::string name;
    std::string_view detail;
    SymbolKind kind = SymbolKind::variable;
    ByteRange range;
    ByteRange nameRange;
    std::vector<Symbol> children;
};

class SymbolTree {
  public:
    explicit SymbolTree(const SourceFile& file) : file_(file), children_(file.index.blocks.size()) {
        const auto& blocks = file.index.blocks;
        for (std::uint32_t i = 1; i < blocks.size(); ++i) {
            children_[blocks[i].parent].push_back(i);
        }
        const auto& all = file.index.occurrences;
        names_.resize(blocks.size());
        for (std::uint32_t i = 0; i < all.size(); ++i) {
            if (all[i].role == NameRole::definition && rowOf(all[i].kind) != nullptr) {
                names_[blockAt(file.index, all[i].begin)].push_back(i);
            }
        }
    }

    [[nodiscard]] std::vector<Symbol> symbolsIn(std::uint32_t block) const {
        std::vector<Symbol> symbols;
        for (const auto number : names_[block]) {
            const auto& o = file_.index.occurrences[number];
            symbols.push_back({std::string(file_.name(o)),
                               {},
                               rowOf(o.kind)->kind,
                               {o.begin, o.end()},
                               {o.begin, o.end()},
                               {}});
        }
        for (const auto child : children_[block]) {
            auto inner = symbolsIn(child);
            if (auto symbol = symbolOf(child)) {
                symbol->children = std::move(inner);
                symbols.push_back(std::move(*symbol));
            } else {
                std::move(inner.begin(), inner.end(), std::back_inserter(symbols));
            }
        }
        std::stable_sort(symbols.begin(), symbols.end(), [](const Symbol& left, const Symbol& right) {
            return left.range.begin < right.range.begin;
        });
        return symbols;
    }

  private:
    static const NameSymbolRow* rowOf(NameKind kind) noexcept {
        const auto row = std::find_if(nameSymbols.begin(), nameSymbols.end(),
                                      [kind](const NameSymbolRow& r) { return r.name == kind; });
        return row == nameSymbols.end() ? nullptr : &*row;
    }

    /// The symbol of a block; nothing for a block that is none.
    [[nodiscard]] std::optional<Symbol> symbolOf(std::uint32_t number) const {
        const Block& block = file_.index.blocks[number];
        const auto row = std::find_if(blockSymbols.begin(), blockSymbols.end(),
                                      [&](const BlockSymbolRow& r) { return r.block == block.kind; });
        const bool isPrelude = block.kind == BlockKind::prelude;
        if (row == blockSymbols.end() || (block.name == noIndex && !isPrelude) ||
            (isPrelude && children_[number].empty())) {
            return std::nullopt;
        }
        Symbol symbol{"", row->detail, row->kind, {block.begin, block.end}, {block.begin, block.begin}, {}};
        if (isPrelude) {
            symbol.name = "prelude";
            symbol.detail = {};
            return symbol;
        }
        const auto& name = file_.index.occurrences[block.name];
        symbol.nameRange = {name.begin, name.end()};
        symbol.name = (block.kind == BlockKind::directive ? "%" : "") + std::string(file_.name(name));
        return symbol;
    }

    const SourceFile& file_;
    std::vector<std::vector<std::uint32_t>> children_;
    std::vector<std::vector<std::uint32_t>> names_;
};

Json nestedJson(const std::vector<Symbol>& symbols, PositionWalk& walk) {
    Json list = Json::array();
    for (const auto& symbol : symbols) {
        Json entry{{"name", symbol.name},
                   {"kind", static_cast<int>(symbol.kind)},
                   {"range", rangeJson(walk, symbol.range)},
                   {"selectionRange", rangeJson(walk, symbol.nameRange)}};
        if (!symbol.detail.empty()) {
            entry["detail"] = symbol.detail;
        }
        if (!symbol.children.empty()) {
            entry["children"] = nestedJson(symbol.children, walk);
        }
        list.push_back(std::move(entry));
    }
    return list;
}

void addFlat(const std::vector<Symbol>& symbols, const SourceFile& file, const std::string& container,
             PositionWalk& walk, Json& list) {
    for (const auto& symbol : symbols) {
        Json entry{{"name", symbol.name},
                   {"kind", static_cast<int>(symbol.kind)},
                   {"location", {{"uri", file.uri}, {"range", rangeJson(walk, symbol.range)}}}};
        if (!container.empty()) {
            entry["containerName"] = container;
        }
        list.push_back(std::move(entry));
        addFlat(symbol.children, file, symbol.name, walk, list);
    }
}

/// A folding of at least two lines.
void addFolding(const TextBuffer& buffer, ByteRange range, const char* kind, Json& list) {
    const auto first = buffer.lineOf(range.begin);
    const auto last = buffer.lineOf(range.end);
    if (last > first) {
        Json entry{{"startLine", first}, {"endLine", last}};
        if (kind != nullptr) {
            entry["kind"] = kind;
        }
        list.push_back(std::move(entry));
    }
}

/// Runs of lines that are comments and nothing else.
void addCommentFoldings(const SourceFile& file, Json& list) {
    const TextBuffer& buffer = *file.buffer;
    ByteRange run;
    std::size_t runLine = 0;
    for (const auto& o : file.index.occurrences) {
        const auto line = buffer.lineOf(o.begin);
        const auto begin = buffer.line(line).begin;
        if (o.kind != NameKind::comment || !trim(file.text().substr(begin, o.begin - begin)).empty()) {
            continue;
        }
        if (run.size() > 0 && line == runLine + 1) {
            run.end = o.end();
        } else {
            addFolding(buffer, run, "comment", list);
            run = {o.begin, o.end()};
        }
        runLine = line;
    }
    addFolding(buffer, run, "comment", list);
}

/// Ranges around a place, the innermost first, each larger than the one before.
std::vector<ByteRange> rangesAround(const SourceFile& file, std::size_t offset) {
    std::vector<ByteRange> ranges;
    const auto add = [&ranges](ByteRange range) {
        if (range.size() > 0 &&
            (ranges.empty() || (range.begin <= ranges.back().begin && range.end >= ranges.back().end &&
                                range.size() > ranges.back().size()))) {
            ranges.push_back(range);
        }
    };
    if (const Occurrence* name = occurrenceAt(file.index, offset)) {
        add({name->begin, name->end()});
    }
    const auto line = file.buffer->line(file.buffer->lineOf(offset));
    const auto text = file.text().substr(line.begin, line.size());
    const auto trimmed = trim(text);
    if (!trimmed.empty()) {
        const auto begin = line.begin + static_cast<std::size_t>(trimmed.data() - text.data());
        add({begin, begin + trimmed.size()});
    }
    for (auto block = blockAt(file.index, offset); block != 0; block = file.index.blocks[block].parent) {
        add({file.index.blocks[block].begin, file.index.blocks[block].end});
    }
    add({0, file.text().size()});
    return ranges;
}

} // namespace

Json documentSymbols(Session& session, const Json& params) {
    const SourceFile& file = session.sources.of(requireText(session, params));
    const auto symbols = SymbolTree(file).symbolsIn(0);
    PositionWalk walk(*file.buffer, session.client.unit);
    if (session.client.nestedSymbols) {
        return nestedJson(symbols, walk);
    }
    Json list = Json::array();
    addFlat(symbols, file, {}, walk, list);
    return list;
}

Json foldingRanges(Session& session, const Json& params) {
    const SourceFile& file = session.sources.of(requireText(session, params));
    Json list = Json::array();
    for (std::size_t i = 1; i < file.index.blocks.size(); ++i) {
        const Block& block = file.index.blocks[i];
        if (block.kind != BlockKind::formula && block.kind != BlockKind::prelude) {
            addFolding(*file.buffer, {block.begin, block.end}, nullptr, list);
        }
    }
    addCommentFoldings(file, list);
    return list;
}

Json selectionRanges(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const SourceFile& file = session.sources.of(text);
    const Json& positions = member(params, "positions");
    if (!positions.is_array()) {
        throw ResponseError(ErrorCode::invalidParams, "positions expected");
    }
    PositionWalk walk(*file.buffer, session.client.unit);
    Json list = Json::array();
    for (const Json& entry : positions) {
        const auto position = readPosition(entry);
        if (!position) {
            throw ResponseError(ErrorCode::invalidParams, "position expected");
        }
        const auto offset = text.buffer.offsetAt(*position, session.client.unit);
        const auto ranges = rangesAround(file, offset);
        Json selection;
        for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
            Json inner{{"range", rangeJson(walk, *range)}};
            if (!selection.is_null()) {
                inner["parent"] = std::move(selection);
            }
            selection = std::move(inner);
        }
        if (selection.is_null()) {
            selection = {{"range", rangeJson(walk, {offset, offset})}};
        }
        list.push_back(std::move(selection));
    }
    return list;
}

Json documentLinks(Session& session, const Json& params) {
    const SourceFile& file = session.sources.of(requireText(session, params));
    PositionWalk walk(*file.buffer, session.client.unit);
    Json list = Json::array();
    for (std::size_t i = 0; i < file.index.links.size(); ++i) {
        const auto& path = file.linked[i];
        const OpenText* open = session.texts.findPath(path);
        if (open != nullptr || isRegularFile(path)) {
            const auto& link = file.index.links[i];
            list.push_back({{"range", rangeJson(walk, {link.begin, link.end})},
                            {"target", open != nullptr ? open->uri : uriOfPath(path)}});
        }
    }
    return list;
}

} // namespace morquill::lsp
