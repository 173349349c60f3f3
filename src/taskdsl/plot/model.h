#pragma once

#include "taskdsl/base/source_span.h"
#include "taskdsl/expr/expression.h"
#include "taskdsl/plot/enumerations.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

/// A parsed plot: plain records that are copied by value; only expression trees are shared. Records are equal
/// when all their fields are, places included; expressions are compared as trees.
namespace morquill::taskdsl::plot {

/// An expression with its presentation: `x`, `y`, `z`, `yerr` and named series. Without an expression it
/// counts as absent.
struct PlotSeries {
    std::string id; ///< empty for an unnamed expression
    ExprRef expression;
    std::string label;
    std::string unit;
    bool logScale = false;
    PlotAxis axis = PlotAxis::y;
    bool axisDeclared = false;
    PlotStyle style = PlotStyle::lines;
    bool styleDeclared = false;
    SourceSpan span;

    friend bool operator==(const PlotSeries& left, const PlotSeries& right);
};

struct BarrierPoint {
    std::string id;
    std::string label;
    ExprRef value;
    SourceSpan span;

    friend bool operator==(const BarrierPoint& left, const BarrierPoint& right);
};

/// A horizontal reference line of a convergence plot.
struct ThresholdLine {
    ExprRef property;
    double value = 0; ///< in `unit`
    std::string label;
    std::string unit;
    PlotAxis axis = PlotAxis::y;
    SourceSpan span;

    friend bool operator==(const ThresholdLine& left, const ThresholdLine& right);
};

/// One column of a frontier or excited-state level plot; label and task are the id when they are not written.
struct PlotColumn {
    std::string id;
    std::string label;
    std::string task;
    std::int32_t multiplicity = 0;
    bool multiplicityDeclared = false;
    SourceSpan span;

    friend bool operator==(const PlotColumn&, const PlotColumn&) = default;
};

/// A transition between levels, to a given root or to the nearest one of a column.
struct ExcitedArrow {
    std::string sourceColumn;
    std::int32_t sourceRoot = 0;
    std::string targetColumn; ///< of an explicit target
    std::int32_t targetRoot = 0;
    std::string relativeColumn; ///< the column that a relative target is looked for in
    ArrowTargetMode targetMode = ArrowTargetMode::explicitRoot;
    ArrowLineStyle style = ArrowLineStyle::solid;
    SourceSpan span;

    friend bool operator==(const ExcitedArrow&, const ExcitedArrow&) = default;
};

struct AxisSpec {
    bool declared = false;
    std::string label;
    std::string unit;
    AxisScale scale = AxisScale::linear;
    bool scaleDeclared = false;
    SourceSpan span;

    friend bool operator==(const AxisSpec&, const AxisSpec&) = default;
};

struct LegendSpec {
    bool declared = false;
    bool visible = true;
    LegendPosition position = LegendPosition::automatic;
    std::vector<std::string> order; ///< series ids
    SourceSpan span;

    friend bool operator==(const LegendSpec&, const LegendSpec&) = default;
};

struct BarrierPlotData {
    std::vector<BarrierPoint> points;
    RelativeMode relativeMode = RelativeMode::none;
    std::string relativePoint;
    std::string unit = "kcal/mol";

    friend bool operator==(const BarrierPlotData&, const BarrierPlotData&) = default;
};
struct ConvergencePlotData {
    PlotSeries x;
    std::vector<PlotSeries> series;
    std::vector<ThresholdLine> thresholds;

    friend bool operator==(const ConvergencePlotData&, const ConvergencePlotData&) = default;
};
struct CurvePlotData {
    PlotSeries x;
    std::vector<PlotSeries> series;
    RelativeMode relativeMode = RelativeMode::none;
    std::string relativePoint;
    bool sortByX = false;

    friend bool operator==(const CurvePlotData&, const CurvePlotData&) = default;
};
struct SpectrumPlotData {
    PlotSeries x;
    PlotSeries y;
    SpectrumMode mode = SpectrumMode::sticks;
    BroadenFunction broadening = BroadenFunction::none;
    double fwhm = 0; ///< in `fwhmUnit`
    std::string fwhmUnit;
    double rangeLow = 0;
    double rangeHigh = 0;
    bool rangeDeclared = false;
    bool sortByX = true;

    friend bool operator==(const SpectrumPlotData&, const SpectrumPlotData&) = default;
};
struct ScatterPlotData {
    PlotSeries x;
    PlotSeries y;
    bool diagonal = false;
    bool fitLinear = false;
    std::vector<std::string> metrics;

    friend bool operator==(const ScatterPlotData&, const ScatterPlotData&) = default;
};
struct HeatmapPlotData {
    PlotSeries x;
    PlotSeries y;
    PlotSeries z;

    friend bool operator==(const HeatmapPlotData&, const HeatmapPlotData&) = default;
};
struct HistogramPlotData {
    PlotSeries x;
    std::int64_t bins = 30;
    double rangeLow = 0;
    double rangeHigh = 0;
    bool rangeDeclared = false;
    bool density = false;

    friend bool operator==(const HistogramPlotData&, const HistogramPlotData&) = default;
};
struct BarPlotData {
    PlotSeries x;
    PlotSeries y;
    bool sortEnabled = false;
    bool sortDescending = true;
    std::int64_t limit = 0;
    bool limitDeclared = false;

    friend bool operator==(const BarPlotData&, const BarPlotData&) = default;
};
struct ErrorbarPlotData {
    PlotSeries x;
    PlotSeries y;
    PlotSeries yerr;
    bool sortByX = false;

    friend bool operator==(const ErrorbarPlotData&, const ErrorbarPlotData&) = default;
};
struct FrontierPlotData {
    std::vector<PlotColumn> columns;
    std::vector<std::string> orbitals;
    SpinSelection spin = SpinSelection::automatic;
    std::string unit = "eV";

    friend bool operator==(const FrontierPlotData&, const FrontierPlotData&) = default;
};
struct ExcitedPlotData {
    std::vector<PlotColumn> columns;
    std::vector<std::int32_t> roots; ///< empty means all roots
    std::vector<ExcitedArrow> arrows;
    std::string unit = "eV";

    friend bool operator==(const ExcitedPlotData&, const ExcitedPlotData&) = default;
};

/// The data of a plot, one alternative per `PlotKind` in the order of the kinds.
using PlotData = std::variant<BarrierPlotData, ConvergencePlotData, CurvePlotData, SpectrumPlotData,
                              ScatterPlotData, HeatmapPlotData, HistogramPlotData, BarPlotData,
                              ErrorbarPlotData, FrontierPlotData, ExcitedPlotData>;

/// One whole plot. After parsing, the index of `data` equals `kind`.
struct PlotSpec {
    std::string id;   ///< owner, ":" and name for a plot with an owner, otherwise the name
    std::string name; ///< the kind's text when none was written
    PlotKind kind = PlotKind::barrier;
    PlotScope scope = PlotScope::task;
    std::string ownerTask;
    PlotSourceKind sourceKind = PlotSourceKind::unspecified;
    std::string sourceArgument; ///< task, template task, or `<derive>.<table>`
    SourceSpan sourceSpan;
    PlotData data;
    std::string outputPath; ///< a literal "[taskname]" is resolved by the tools that draw
    PlotOutputFormat format = PlotOutputFormat::png;
    std::int32_t width = 1000; ///< in units of the terminal that draws
    std::int32_t height = 700;
    bool sizeDeclared = false;
    PlotStyle style = PlotStyle::lines;
    PlotTheme theme = PlotTheme::automatic;
    MissingPolicy missing = MissingPolicy::error;
    AxisSpec xAxis;
    AxisSpec yAxis;
    AxisSpec y2Axis;
    LegendSpec legend;
    std::string title;
    SourceSpan span; ///< the header

    friend bool operator==(const PlotSpec&, const PlotSpec&) = default;
};

/// Puts the defaults of `plot.kind` into `plot.data` and, for the kinds that have a style of their
/// own, into `plot.style`.
void applyKindDefaults(PlotSpec& plot);

/// The style of a plot of this kind that declares none.
[[nodiscard]] PlotStyle defaultStyle(PlotKind kind) noexcept;

} // namespace morquill::taskdsl::plot
