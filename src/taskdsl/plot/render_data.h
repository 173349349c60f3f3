#pragma once

#include "taskdsl/plot/printer.h"

namespace morquill::taskdsl::plot {

/// The lines of the plot that only its kind has.
void printData(Printer& print, const PlotData& data);

} // namespace morquill::taskdsl::plot
