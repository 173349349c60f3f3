#pragma once

#include "taskdsl/expr/statement_reader.h"
#include "taskdsl/plot/model.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What the statement functions of the plot parser work on. Internal to the parser.
namespace morquill::taskdsl::plot {

/// A plot while its body is read.
struct PlotReading {
    PlotSpec plot;
    std::vector<PlotStatement> statements;
    std::size_t next = 0;        ///< index of the first statement that has not been taken
    bool formatDeclared = false; ///< a `format` or `terminal` was written
    bool atPoint = false;        ///< the last barrier point takes `label` and `value` statements
};

/// One statement, taken apart at its first word.
struct Statement {
    std::string word;      ///< lower case
    std::string_view rest; ///< trimmed text after the word
    const SourceSpan& span;
    std::size_t indent = 0;
};

/// The statement as its first word and the rest; views into `source`.
[[nodiscard]] Statement openStatement(const PlotStatement& source);

/// Reads the statements that have not been taken into the plot. Throws `DiagnosticError` for the first fault.
void readStatements(PlotReading& reading);

/// What the lines of a body say of a plot of this kind, without places, checks and defaults that depend on
/// the whole. Throws `DiagnosticError` for the first fault.
[[nodiscard]] PlotSpec readBody(PlotKind kind, std::string_view lines);

/// The format that the path's extension names; nothing when it has none or it names no format.
[[nodiscard]] std::optional<PlotOutputFormat> formatOfPath(std::string_view path);

/// Takes the statements that follow and are indented deeper than `statement`.
[[nodiscard]] std::span<const PlotStatement> takeBody(PlotReading& reading, const Statement& statement);

/// The first word of the text, unquoted and in lower case: what is compared with a list of words.
[[nodiscard]] std::string choiceOf(std::string_view text);

/// The data of the plot. The statement table lets a statement through only in the kinds that have it.
template <class Data>
[[nodiscard]] Data& dataOf(PlotReading& reading) {
    return std::get<Data>(reading.plot.data);
}

/// Throws the diagnostic of a fault in the statement.
[[noreturn]] void fail(const Statement& statement, std::string message);

} // namespace morquill::taskdsl::plot
