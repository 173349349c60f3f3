#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/plot/model.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::plot {

/// The plot in canonical form, from its header to its last line (`@end` for a file-level plot), every line
/// with the indent before it and a line feed after it. The text reads back as an equal plot, places aside.
/// Where the canonical form cannot hold what the plot says, one line with the plot and the reasons
/// goes to `warnings`.
[[nodiscard]] std::string renderPlot(const PlotSpec& plot, std::string_view indent,
                                     const WarningSink& warnings = {});

} // namespace morquill::taskdsl::plot
