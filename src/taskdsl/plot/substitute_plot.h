#pragma once

#include "taskdsl/plot/model.h"
#include "taskdsl/base/substitute.h"

namespace morquill::taskdsl::plot {

/// Replaces `[key]` references in every text of the plot: its id, name, owner and output path, labels, units
/// and ids, and the names and strings in its expressions. Spans stay.
void substitutePlot(PlotSpec& plot, const ValueMap& values);

/// The expression with `[key]` references replaced in its names and strings; nodes without one are shared.
[[nodiscard]] ExprRef substituteExpression(const ExprRef& expression, const ValueMap& values);

} // namespace morquill::taskdsl::plot
