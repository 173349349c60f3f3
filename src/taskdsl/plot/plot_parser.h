#pragma once

#include "taskdsl/plot/model.h"
#include "taskdsl/plot/plot_block.h"

namespace morquill::taskdsl::plot {

/// Reads a captured `@plot` or `%plot`: header, statements, output path, checks. Throws `DiagnosticError` for
/// the first fault, with the place of the statement (or of the header) it lies in.
[[nodiscard]] PlotSpec parsePlot(const PlotBlock& block);

} // namespace morquill::taskdsl::plot
