#pragma once

#include "taskdsl/base/source_span.h"
#include "taskdsl/plot/model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace morquill::taskdsl::plot {

/// One finding about a plot.
struct PlotIssue {
    static constexpr std::int32_t error = 1;

    std::int32_t severity = error;
    std::string code;
    std::string message;
    SourceSpan span;
};

/// Every finding about a plot that has been read whole, in a fixed order: first what holds for every kind,
/// then what the kind asks for.
[[nodiscard]] std::vector<PlotIssue> validatePlot(const PlotSpec& plot);

} // namespace morquill::taskdsl::plot
