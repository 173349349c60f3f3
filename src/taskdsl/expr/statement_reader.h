#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/source_span.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl::plot {

/// One logical statement: a physical line, or several where a line ends in an operator or inside parentheses.
struct PlotStatement {
    TextSlice text; ///< comments removed, trimmed, the physical lines joined by one blank
    SourceSpan
        span; ///< from the first byte (a tab counts as four columns) to the raw length of the last line
    std::size_t indent = 0; ///< leading blanks of the first line, a tab counting as four
};

/// Joins the physical lines of a body into statements. `language` is the noun of the messages, "plot" or
/// "@derive". Throws `DiagnosticError` for a string or snapshot left open at a line end, unbalanced "}}" or
/// parentheses, and a body that ends inside a statement.
[[nodiscard]] std::vector<PlotStatement> readPlotStatements(const std::vector<SourceLine>& lines,
                                                            std::string_view language = "plot");

/// Throws the diagnostic: `<span>: error: <message>`, or the bare message when the span is invalid.
[[noreturn]] void plotError(const SourceSpan& span, std::string message);

} // namespace morquill::taskdsl::plot
