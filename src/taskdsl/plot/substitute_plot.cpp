#include "taskdsl/plot/substitute_plot.h"

#include "support/text.h"

#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// Replaces in place whatever it is given, down to the texts. True when a text changed.
struct Substitution {
    const ValueMap& values;

    bool operator()(std::string& text) const {
        if (text.find('[') == std::string::npos) {
            return false;
        }
        auto replaced = substituteBrackets(text, values);
        const bool changed = replaced != text;
        text = std::move(replaced);
        return changed;
    }

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

ExprRef substituteExpression(const ExprRef& expression, const ValueMap& values) {
    const Substitution substitute{values};
    return mapExpression(expression, [&](const ExprRef& node) -> ExprRef {
        auto copy = node->node;
        const bool changed =
            std::visit(Match{[&](StringExpr& string) { return substitute(string.text); },
                             [&](IdentifierExpr& identifier) { return substitute(identifier.name); },
                             [&](SnapshotExpr& snapshot) {
                                 const bool task = substitute(snapshot.task);
                                 return substitute(snapshot.key) || task;
                             },
                             [&](CallExpr& call) {
                                 bool any = substitute(call.name);
                                 for (auto& argument : call.arguments) {
                                     any = substitute(argument.name) || any;
                                 }
                                 return any;
                             },
                             [](auto&) { return false; }},
                       copy);
        return changed ? makeExpression(std::move(copy)) : node;
    });
}

} // namespace morquill::taskdsl::plot
