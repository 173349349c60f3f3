#pragma once

#include "taskdsl/base/source_line.h"

#include <cstdint>
#include <string>

namespace morquill::taskdsl::plot {

/// Where a plot was declared: `%plot` inside a task block, or `@plot ... @end` at file level.
enum class PlotScope : std::int32_t { task = 0, project = 1 };

/// A plot as it was found in the file, before the plot language is applied to it.
struct PlotBlock {
    PlotScope scope = PlotScope::project;
    std::string ownerTask;  ///< name of the owning task; empty in scope project
    CapturedBlock captured; ///< header text (kind and name) with its span, body lines
};

} // namespace morquill::taskdsl::plot
