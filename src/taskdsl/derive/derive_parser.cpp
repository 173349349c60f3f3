#include "taskdsl/derive/derive_parser.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/block_reader.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/derive/read_back.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace morquill::taskdsl::derive {

namespace {

/// A rule of order: `message` is raised when one of `flags` is among what was seen (`refused`),
/// or when none is (`needed`).
struct PhaseRule {
    enum Kind { none, refused, needed } kind = none;
    std::uint32_t flags = 0;
    std::string_view message;
};

constexpr PhaseRule after(std::uint32_t flags, std::string_view message) {
    return {PhaseRule::refused, flags, message};
}
constexpr PhaseRule needs(std::uint32_t flags, std::string_view message) {
    return {PhaseRule::needed, flags, message};
}

struct StatementRow {
    std::string_view word;
    std::string_view object;        ///< a second word; empty when the keyword is one word
    std::array<PhaseRule, 4> rules; ///< the first that is broken is reported
    std::uint32_t sets;
    StatementReader read;
    bool mayBeAlone = false; ///< the keyword may be the whole statement
};

constexpr std::uint32_t aggregated = seenGroupBy | seenAggregate;
constexpr std::uint32_t ordered = seenSort | seenLimit;
constexpr std::uint32_t emitsSink = seenSink | seenEmit;
constexpr bool mayBeAlone = true;

// clang-format off
/// In the order in which they are tried.
constexpr StatementRow statementRows[] = {
    {"profile", "", {after(seenFrom, "profile definitions must precede the from statement")}, 0,
     [](BlockReader& r, std::string_view text) { parseProfile(text, r.span, r.surface); }},
    {"formula", "", {after(seenFrom, "formula definitions must precede the from statement")}, 0,
     [](BlockReader& r, std::string_view text) { parseFormula(text, r.span, r.surface); }},
    {"bind", "", {after(seenFrom, "bind statements must precede the from statement")}, 0,
     [](BlockReader& r, std::string_view text) { parseBind(text, r.span, r.surface, r.spec.statements); }},
    {"let", "", {after(seenFrom, "let statements must precede the from statement")}, 0, readLet},
    {"require", "",
     {after(seenFrom, "require/assert statements must precede the from statement; use where for row filtering")},
     0, readRequire},
    {"assert", "",
     {after(seenFrom, "require/assert statements must precede the from statement; use where for row filtering")},
     0, readRequire},
    {"report", "", {after(seenFrom, "report statements must precede the from statement")}, 0, readReport},
    {"from", "", {after(seenFrom, "@derive currently supports only one from statement")}, seenFrom, readFrom},
    {"join", "",
     {needs(seenFrom, "join requires a preceding from statement"),
      after(seenSink, "join cannot appear after an emit sink"),
      after(seenWhere | seenSelect | aggregated | ordered,
            "join statements must precede where/select/group/sort/limit statements"),
      needs(seenAtomsSource, "join is currently supported only for atoms(...) sources")},
     0, readJoin},
    {"where", "",
     {needs(seenFrom, "where requires a preceding from statement"),
      after(seenSink, "where cannot appear after an emit sink"),
      after(seenSelect | aggregated | ordered, "where statements must precede select/group/sort/limit statements")},
     seenWhere, readWhere},
    {"select", "",
     {needs(seenFrom, "select requires a preceding from statement"),
      after(seenSink, "select cannot appear after an emit sink"),
      after(aggregated, "select statements must precede group by statements"),
      after(ordered, "select statements must precede sort/limit statements")},
     seenSelect, readSelect},
    {"group", "by",
     {needs(seenFrom, "group by requires a preceding from statement"),
      after(seenSink, "group by cannot appear after an emit sink"),
      after(ordered, "group by must precede sort/limit statements"),
      after(seenGroupBy, "@derive currently supports only one group by statement")},
     seenGroupBy, readGroupBy},
    {"aggregate", "",
     {needs(seenGroupBy, "aggregate/reduce requires a preceding group by statement"),
      after(seenSink, "aggregate/reduce cannot appear after an emit sink"),
      after(ordered, "aggregate/reduce must precede sort/limit statements")},
     seenAggregate, readAggregate},
    {"reduce", "",
     {needs(seenGroupBy, "aggregate/reduce requires a preceding group by statement"),
      after(seenSink, "aggregate/reduce cannot appear after an emit sink"),
      after(ordered, "aggregate/reduce must precede sort/limit statements")},
     seenAggregate, readAggregate},
    {"sort", "",
     {needs(seenFrom, "sort requires a preceding from statement"),
      after(seenSink, "sort cannot appear after an emit sink"),
      after(seenLimit, "sort statements must precede limit statements")},
     seenSort, readSort},
    {"limit", "",
     {needs(seenFrom, "limit requires a preceding from statement"),
      after(seenSink, "limit cannot appear after an emit sink"),
      after(seenLimit, "@derive currently supports only one limit statement")},
     seenLimit, readLimit},
    {"emit", "atomvec",
     {needs(seenFrom, "emit atomvec requires a preceding atom table source"),
      needs(seenAtomsSource, "emit atomvec is valid only for atoms(...) pipelines")},
     emitsSink, readEmitAtomVector},
    {"emit", "kv",
     {needs(seenFrom, "emit kv requires a preceding atom table source"),
      needs(seenAtomsSource, "emit kv is valid only for atoms(...) pipelines")},
     emitsSink, readEmitKv},
    {"emit", "artifact",
     {needs(seenFrom, "emit artifact requires a preceding atom table source"),
      needs(seenAtomsSource, "emit artifact is valid only for atoms(...) pipelines")},
     emitsSink, readEmitArtifact},
    {"emit", "table",
     {needs(seenFrom, "emit table requires a preceding from statement"),
      needs(seenSelect | aggregated | seenDerivedSource,
            "emit table requires at least one select, group key, aggregate column, or derived table source")},
     emitsSink, readEmitTable},
    {"emit", "report", {after(seenFrom, "emit report statements must precede the from statement")}, seenEmit,
     readEmitReport, mayBeAlone},
    {"emit", "value", {after(seenFrom, "scalar value emit statements must precede the from statement")}, seenEmit,
     readEmitValue},
    {"emit", "", {after(seenFrom, "scalar emit statements must precede the from statement")}, seenEmit, readEmitScalar},
};
// clang-format on

/// A word and the text after the blank that ends it.
struct KeywordPart {
    std::string_view word;
    std::string_view rest;
};

/// The first word of the text; nothing when no blank ends it. Neither a tab nor the end of the text ends a
/// word of a keyword, and the two words of one are a single blank apart.
std::optional<KeywordPart> keywordPart(std::string_view text) noexcept {
    const auto blank = text.find(' ');
    return blank == std::string_view::npos
               ? std::nullopt
               : std::optional(KeywordPart{text.substr(0, blank), text.substr(blank + 1)});
}

/// A statement with the row of its kind.
struct KnownStatement {
    const StatementRow& row;
    std::string_view rest; ///< trimmed text after the keyword
};

KnownStatement knownStatement(const BlockReader& reader, std::string_view text) {
    const auto first = keywordPart(text);
    const auto second = first ? keywordPart(first->rest) : std::nullopt;
    for (const auto& row : statementRows) {
        if (!first || !equalsNoCase(first->word, row.word)) {
            continue;
        }
        if (row.object.empty()) {
            return {row, trim(first->rest)};
        }
        if (second && equalsNoCase(second->word, row.object)) {
            return {row, trim(second->rest)};
        }
        if (row.mayBeAlone && equalsNoCase(first->rest, row.object)) {
            return {row, {}};
        }
    }
    reader.fail(
        "unknown @derive statement; expected profile, formula, bind, let, require/assert, emit, report, "
        "from, join, where, select, group by, aggregate/reduce, sort, limit, emit table, emit value, emit "
        "report, emit atomvec, emit kv, or emit artifact");
}

void checkPhase(const BlockReader& reader, const StatementRow& row) {
    for (const auto& rule : row.rules) {
        const bool seen = (reader.seen & rule.flags) != 0;
        if ((rule.kind == PhaseRule::refused && seen) || (rule.kind == PhaseRule::needed && !seen)) {
            reader.fail(std::string(rule.message));
        }
    }
}

enum class Phases { checked, ignored };

void readStatement(BlockReader& reader, Phases phases) {
    const auto& line = reader.lines[reader.next++];
    reader.span = line.span;
    reader.indent = line.indent;
    const auto [row, rest] = knownStatement(reader, line.text);
    if (phases == Phases::checked) {
        checkPhase(reader, row);
    }
    row.read(reader, rest);
    reader.seen |= row.sets;
}

std::string readName(const CapturedBlock& block) {
    const std::string name = plot::unquotePlotText(block.header);
    if (name.empty()) {
        plot::plotError(block.span, "@derive requires a name");
    }
    return requireIdentifier(name, "@derive name must be an identifier", block.span);
}

} // namespace

DeriveSpec parseDerive(const CapturedBlock& block) {
    BlockReader reader;
    reader.spec.span = block.span;
    reader.spec.name = readName(block);
    reader.lines = plot::readPlotStatements(block.lines, "@derive");
    while (reader.next < reader.lines.size()) {
        readStatement(reader, Phases::checked);
    }
    reader.span = block.span;
    if ((reader.seen & seenEmit) == 0) {
        reader.fail("@derive block must contain at least one emit statement");
    }
    if ((reader.seen & seenFrom) != 0 && (reader.seen & seenSink) == 0) {
        reader.fail("table pipeline must end with at least one emit sink");
    }
    return std::move(reader.spec);
}

bool isEmitWord(std::string_view name) noexcept {
    return std::any_of(std::begin(statementRows), std::end(statementRows), [name](const StatementRow& row) {
        return row.word == "emit" && !row.object.empty() && equalsNoCase(row.object, name);
    });
}

std::optional<DeriveStatement> readSingleStatement(std::string_view text) {
    std::vector<SourceLine> lines;
    for (const auto line : splitLines(text)) {
        lines.push_back({std::string(line), {}, 1});
    }
    BlockReader reader;
    try {
        reader.lines = plot::readPlotStatements(lines, "@derive");
        if (reader.lines.size() == 1) {
            readStatement(reader, Phases::ignored);
        }
    } catch (const DiagnosticError&) {
        return std::nullopt;
    }
    auto& statements = reader.spec.statements;
    return statements.size() == 1 ? std::optional(std::move(statements.front())) : std::nullopt;
}

} // namespace morquill::taskdsl::derive
