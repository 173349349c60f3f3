#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/plot/model.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::plot {

/// The plot in canonical form, from its header to its last line (`@end` for a file-level plot), every line
/// with the indent before it and a line feed behind it. The text reads back as an equal plot, places aside.
/// Where the canonical form cannot hold what the plot says, `warnings` is given one line that names the plot
/// and the reasons.
[[nodiscard]] std::string renderPlot(const PlotSpec& plot, std::string_view indent,
                                     const WarningSink& warnings = {});

} // namespace morquill::taskdsl::plot
