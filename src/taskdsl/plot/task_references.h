#pragma once

#include "taskdsl/plot/model.h"

#include <set>
#include <string>

namespace morquill::taskdsl::plot {

/// The names of the tasks that the plot reads: `from task`, the tasks of its columns, and those that its
/// expressions name. The owner of a plot, "self" and the template of `from variants` are not among them.
[[nodiscard]] std::set<std::string> collectPlotTaskReferences(const PlotSpec& plot);

} // namespace morquill::taskdsl::plot
