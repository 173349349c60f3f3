#include "taskdsl/plot/substitute_plot.h"

#include "taskdsl/expr/substitute_expression.h"

#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// Replaces in place, whatever the argument, down to the texts.
struct Substitution {
    const ValueMap& values;

    void operator()(std::string& text) const { substituteInto(text, values); }

    void operator()(ExprRef& expression) const { expression = substituteExpression(expression, values); }

    void operator()(PlotSeries& series) const {
        all(series.id, series.expression, series.label, series.unit);
    }
    void operator()(BarrierPoint& point) const { all(point.id, point.label, point.value); }
    void operator()(ThresholdLine& line) const { all(line.property, line.label, line.unit); }
    void operator()(PlotColumn& column) const { all(column.id, column.label, column.task); }
    void operator()(ExcitedArrow& arrow) const {
        all(arrow.sourceColumn, arrow.targetColumn, arrow.relativeColumn);
    }
    void operator()(AxisSpec& axis) const { all(axis.label, axis.unit); }
    void operator()(LegendSpec& legend) const { all(legend.order); }

    void operator()(BarrierPlotData& data) const { all(data.points, data.relativePoint, data.unit); }
    void operator()(ConvergencePlotData& data) const { all(data.x, data.series, data.thresholds); }
    void operator()(CurvePlotData& data) const { all(data.x, data.series, data.relativePoint); }
    void operator()(SpectrumPlotData& data) const { all(data.x, data.y, data.fwhmUnit); }
    void operator()(ScatterPlotData& data) const { all(data.x, data.y, data.metrics); }
    void operator()(HeatmapPlotData& data) const { all(data.x, data.y, data.z); }
    void operator()(HistogramPlotData& data) const { all(data.x); }
    void operator()(BarPlotData& data) const { all(data.x, data.y); }
    void operator()(ErrorbarPlotData& data) const { all(data.x, data.y, data.yerr); }
    void operator()(FrontierPlotData& data) const { all(data.columns, data.orbitals, data.unit); }
    void operator()(ExcitedPlotData& data) const { all(data.columns, data.arrows, data.unit); }

    void operator()(PlotData& data) const { std::visit(*this, data); }

    template <class T>
    void operator()(std::vector<T>& list) const {
        for (auto& entry : list) {
            (*this)(entry);
        }
    }

    template <class... Parts>
    void all(Parts&... parts) const {
        ((*this)(parts), ...);
    }
};

} // namespace

void substitutePlot(PlotSpec& plot, const ValueMap& values) {
    if (values.empty()) {
        return;
    }
    Substitution{values}.all(plot.id, plot.name, plot.ownerTask, plot.sourceArgument, plot.data,
                             plot.outputPath, plot.xAxis, plot.yAxis, plot.y2Axis, plot.legend, plot.title);
}

} // namespace morquill::taskdsl::plot
