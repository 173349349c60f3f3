#pragma once

#include "taskdsl/plot/model.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::plot {

/// The plot in canonical form, from its header to its last line (`@end` for a file-level plot), every line
/// with the indent before it and a line feed behind it.
[[nodiscard]] std::string renderPlot(const PlotSpec& plot, std::string_view indent);

} // namespace morquill::taskdsl::plot
