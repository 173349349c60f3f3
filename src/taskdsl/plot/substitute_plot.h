#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/plot/model.h"

namespace morquill::taskdsl::plot {

/// Replaces `[key]` references in every text of the plot: its id, name, owner and output path, labels, units
/// and ids, and the names and strings in its expressions. Spans stay.
void substitutePlot(PlotSpec& plot, const ValueMap& values);

} // namespace morquill::taskdsl::plot
