#pragma once

#include "taskdsl/derive/derive_spec.h"
#include "taskdsl/derive/formulas.h"
#include "taskdsl/expr/statement_reader.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the readers of the individual statements share while one block is read.
/// Not for use outside this room.
namespace morquill::taskdsl::derive {

/// What the block has held so far; the order of the statements is checked against it.
enum Seen : std::uint32_t {
    seenFrom = 1U << 0,
    seenAtomsSource = 1U << 1,
    seenDerivedSource = 1U << 2,
    seenWhere = 1U << 3,
    seenSelect = 1U << 4,
    seenGroupBy = 1U << 5,
    seenAggregate = 1U << 6,
    seenSort = 1U << 7,
    seenLimit = 1U << 8,
    seenSink = 1U << 9, ///< emit table, atomvec, kv or artifact
    seenEmit = 1U << 10 ///< any emit
};

struct BlockReader {
    std::vector<plot::PlotStatement> lines;
    std::size_t next = 0; ///< index of the statement after the one that is read
    std::uint32_t seen = 0;
    DeriveSurface surface;
    std::set<std::string, std::less<>> aliases;    ///< of the atom sources
    std::set<std::string, std::less<>> selected;   ///< names of the select columns
    std::set<std::string, std::less<>> groupKeys;  ///< names of the group keys
    std::set<std::string, std::less<>> aggregates; ///< names of the aggregate columns
    SourceSpan span;                               ///< of the statement that is read
    std::size_t indent = 0;                        ///< of the statement that is read
    DeriveSpec spec;

    template <class Statement>
    void add(Statement statement) {
        statement.span = span;
        spec.statements.emplace_back(std::move(statement));
    }
    [[noreturn]] void fail(std::string message) const { plot::plotError(span, std::move(message)); }
    /// Parses and expands.
    [[nodiscard]] ExprRef expression(std::string_view text) {
        return readDeriveExpression(text, surface, span);
    }
    /// Parses and expands; an empty text throws `emptyMessage`.
    [[nodiscard]] ExprRef expression(std::string_view text, std::string_view emptyMessage) {
        if (text.empty()) {
            fail(std::string(emptyMessage));
        }
        return expression(text);
    }
};

/// The readers receive the trimmed text after the keyword.
using StatementReader = void (*)(BlockReader& reader, std::string_view text);

// Preamble (preamble.cpp).
void readLet(BlockReader& reader, std::string_view text);
void readRequire(BlockReader& reader, std::string_view text);
void readReport(BlockReader& reader, std::string_view text);

// Pipeline (pipeline.cpp).
void readFrom(BlockReader& reader, std::string_view text);
void readJoin(BlockReader& reader, std::string_view text);
void readWhere(BlockReader& reader, std::string_view text);
void readSelect(BlockReader& reader, std::string_view text);
void readGroupBy(BlockReader& reader, std::string_view text);
void readAggregate(BlockReader& reader, std::string_view text);
void readSort(BlockReader& reader, std::string_view text);
void readLimit(BlockReader& reader, std::string_view text);

// Emits (emits.cpp).
void readEmitScalar(BlockReader& reader, std::string_view text);
void readEmitTable(BlockReader& reader, std::string_view text);
void readEmitValue(BlockReader& reader, std::string_view text);
void readEmitReport(BlockReader& reader, std::string_view text);
void readEmitAtomVector(BlockReader& reader, std::string_view text);
void readEmitKv(BlockReader& reader, std::string_view text);
void readEmitArtifact(BlockReader& reader, std::string_view text);

} // namespace morquill::taskdsl::derive
