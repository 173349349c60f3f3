#pragma once

#include "taskdsl/plot/model.h"

#include <string_view>

namespace morquill::taskdsl::plot {

/// Reads `<expression> [label|unit|log|scale|axis|style <value>]...`. `keyword` is the statement's word, for
/// the messages. Throws `DiagnosticError` with the span.
[[nodiscard]] PlotSeries parseSeriesStatement(std::string_view keyword, std::string_view text,
                                              const SourceSpan& span);

/// Applies one modifier, named by its lower-case word, to the series. Throws `DiagnosticError` with the span.
void applySeriesModifier(PlotSeries& series, std::string_view word, std::string_view value,
                         const SourceSpan& span);

/// The style that the first word of the text names. Throws `DiagnosticError` with the span.
[[nodiscard]] PlotStyle readStyleValue(std::string_view text, const SourceSpan& span);

} // namespace morquill::taskdsl::plot
