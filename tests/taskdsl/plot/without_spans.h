#pragma once

#include "taskdsl/plot/model.h"

#include <utility>
#include <variant>
#include <vector>

/// Plots as they compare when places do not count. For unit tests and fuzzers.
namespace morquill::taskdsl::plot {

/// Forgets the places of whatever it is given.
struct SpanEraser {
    template <class Record>
    void operator()(Record& record) const {
        if constexpr (requires { record.span; }) {
            record.span = {};
        }
        if constexpr (requires { record.points; }) {
            all(record.points);
        }
        if constexpr (requires { record.columns; }) {
            all(record.columns);
        }
        if constexpr (requires { record.arrows; }) {
            all(record.arrows);
        }
        if constexpr (requires { record.series; }) {
            all(record.series);
        }
        if constexpr (requires { record.thresholds; }) {
            all(record.thresholds);
        }
        if constexpr (requires { record.x; }) {
            record.x.span = {};
        }
        if constexpr (requires { record.y; }) {
            record.y.span = {};
        }
        if constexpr (requires { record.z; }) {
            record.z.span = {};
        }
        if constexpr (requires { record.yerr; }) {
            record.yerr.span = {};
        }
    }

    template <class Record>
    void all(std::vector<Record>& records) const {
        for (auto& record : records) {
            (*this)(record);
        }
    }
};

/// The plot without the places of its parts.
inline PlotSpec withoutSpans(PlotSpec plot) {
    plot.span = {};
    plot.sourceSpan = {};
    plot.xAxis.span = plot.yAxis.span = plot.y2Axis.span = {};
    plot.legend.span = {};
    std::visit(SpanEraser{}, plot.data);
    return plot;
}

} // namespace morquill::taskdsl::plot
