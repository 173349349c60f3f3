#include "taskdsl/plot/validate.h"

#include "taskdsl/expr/statement_reader.h"

#include "fixtures/plot_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const SourceSpan header{"a.mq", 1, 1, 1, 9};
const SourceSpan inside{"a.mq", 4, 3, 4, 9};

/// A plot that has been read but not checked: what the parser would not let through.
template <class Data>
PlotSpec plotOf(PlotKind kind, Data data, PlotScope scope = PlotScope::project) {
    PlotSpec plot;
    plot.kind = kind;
    plot.scope = scope;
    plot.name = "p";
    plot.span = header;
    applyKindDefaults(plot);
    plot.data = std::move(data);
    plot.sourceKind = scope == PlotScope::task ? PlotSourceKind::self : PlotSourceKind::unspecified;
    return plot;
}

/// Every finding as `<code> <line>: <message>`.
std::vector<std::string> findings(const PlotSpec& plot) {
    std::vector<std::string> result;
    for (const auto& issue : validatePlot(plot)) {
        EXPECT_EQ(issue.severity, 1);
        result.push_back(issue.code + " " + std::to_string(issue.span.line) + ": " + issue.message);
    }
    return result;
}

PlotSeries seriesOf(std::string id, SourceSpan span = inside) {
    PlotSeries series;
    series.id = std::move(id);
    series.expression = parsePlotExpression("e", header);
    series.span = std::move(span);
    return series;
}

PlotSpec frontierPlot(PlotScope scope = PlotScope::task) {
    return plotOf(PlotKind::frontier, FrontierPlotData{}, scope);
}

TEST(PlotChecks, NameSizeAndFormat) {
    auto plot = frontierPlot();
    EXPECT_THAT(findings(plot), IsEmpty());
    plot.name.clear();
    plot.width = 0;
    EXPECT_THAT(findings(plot), ElementsAre("plot-name-empty 1: plot name must not be empty",
                                            "plot-size-invalid 1: plot size must be positive"));
    plot.name = "p";
    plot.width = 1;
    plot.height = -1;
    EXPECT_THAT(findings(plot), ElementsAre("plot-size-invalid 1: plot size must be positive"));
    plot.height = 1;
    plot.format = PlotOutputFormat::cdxml;
    EXPECT_THAT(findings(plot), IsEmpty());

    auto bar = plotOf(PlotKind::bar, BarPlotData{seriesOf(""), seriesOf("")}, PlotScope::task);
    bar.format = PlotOutputFormat::cdxml;
    EXPECT_THAT(findings(bar),
                ElementsAre("plot-cdxml-kind 1: CDXML output is supported only for barrier, frontier "
                            "and excited-state plots"));
}

TEST(PlotChecks, SeriesIdsAndLegendOrder) {
    CurvePlotData data;
    data.x = seriesOf("");
    data.series = {seriesOf("a"), seriesOf(""), seriesOf("b"),
                   seriesOf("a"), seriesOf(""), seriesOf("a", {})};
    auto plot = plotOf(PlotKind::curve, data, PlotScope::task);
    EXPECT_THAT(findings(plot), ElementsAre("plot-series-duplicate 4: duplicate plot series id 'a'",
                                            "plot-series-duplicate 1: duplicate plot series id 'a'"));
    data.series = {seriesOf("a"), seriesOf("b"), seriesOf("")};
    plot = plotOf(PlotKind::curve, data, PlotScope::task);
    plot.legend.order = {"a", "c", "a", "c", ""};
    EXPECT_THAT(findings(plot), IsEmpty()) << "a legend that is not declared is not looked at";
    plot.legend.declared = true;
    plot.legend.span = inside;
    EXPECT_THAT(findings(plot),
                ElementsAre("plot-legend-order-unknown 4: legend order references unknown named series 'c'",
                            "plot-legend-order-duplicate 4: legend order contains duplicate series id 'a'",
                            "plot-legend-order-duplicate 4: legend order contains duplicate series id 'c'",
                            "plot-legend-order-unknown 4: legend order references unknown named series ''"));
}

TEST(PlotChecks, KindsWithoutNamedSeriesKnowNoLegendOrder) {
    EXPECT_EQ(faultOf("@plot bar p\nfrom project\nx a\ny b\nlegend:\n  order a"),
              "a.mq:5:1-5:7: error: plot 'p': legend order references unknown named series 'a'");
}

TEST(PlotChecks, BarrierReportsEachPoint) {
    BarrierPlotData data;
    const auto value = parsePlotExpression("1", header);
    data.points = {{"", "", nullptr, inside}};
    EXPECT_THAT(findings(plotOf(PlotKind::barrier, data)),
                ElementsAre("barrier-points 1: barrier plot requires at least two points",
                            "barrier-point-id 4: barrier point id must not be empty",
                            "barrier-point-value 4: barrier point '' has no value expression"));
    data.points = {{"a", "", value, inside}, {"a", "", nullptr, inside}};
    data.relativeMode = RelativeMode::toPoint;
    data.relativePoint = "c";
    EXPECT_THAT(findings(plotOf(PlotKind::barrier, data)),
                ElementsAre("barrier-point-duplicate 4: duplicate barrier point id 'a'",
                            "barrier-point-value 4: barrier point 'a' has no value expression",
                            "barrier-relative-point 1: relative reference point 'c' does not exist"));
    data.points = {{"a", "", value, inside}, {"c", "", value, inside}};
    EXPECT_THAT(findings(plotOf(PlotKind::barrier, data)), IsEmpty());
}

TEST(PlotChecks, WhatEachKindNeeds) {
    const std::string bare = " plot requires a data source";
    EXPECT_THAT(
        findings(plotOf(PlotKind::convergence, ConvergencePlotData{})),
        ElementsAre("convergence-x 1: convergence plot requires an x expression",
                    "convergence-y 1: convergence plot requires at least one y series",
                    "convergence-source 1: project-level convergence plot requires 'from task <name>'"));
    EXPECT_THAT(
        findings(plotOf(PlotKind::curve, CurvePlotData{})),
        ElementsAre("curve-x 1: curve plot requires an x expression",
                    "curve-y 1: curve plot requires at least one y series",
                    "curve-source 1: curve plot requires a source such as 'from variants <task>' or 'from "
                    "derived(derive.table)'"));
    EXPECT_THAT(findings(plotOf(PlotKind::spectrum, SpectrumPlotData{})),
                ElementsAre("spectrum-x 1: spectrum plot requires an x expression",
                            "spectrum-y 1: spectrum plot requires a y/intensity expression",
                            "spectrum-source 1: spectrum" + bare));
    EXPECT_THAT(findings(plotOf(PlotKind::scatter, ScatterPlotData{})),
                ElementsAre("scatter-x 1: scatter plot requires an x expression",
                            "scatter-y 1: scatter plot requires a y expression",
                            "scatter-source 1: scatter" + bare));
    EXPECT_THAT(findings(plotOf(PlotKind::heatmap, HeatmapPlotData{})),
                ElementsAre("heatmap-x 1: heatmap plot requires an x expression",
                            "heatmap-y 1: heatmap plot requires a y expression",
                            "heatmap-z 1: heatmap plot requires a z expression",
                            "heatmap-source 1: heatmap" + bare));
    EXPECT_THAT(findings(plotOf(PlotKind::histogram, HistogramPlotData{})),
                ElementsAre("histogram-x 1: histogram plot requires an x expression",
                            "histogram-source 1: histogram" + bare));
    EXPECT_THAT(findings(plotOf(PlotKind::bar, BarPlotData{})),
                ElementsAre("bar-x 1: bar plot requires an x/category expression",
                            "bar-y 1: bar plot requires a y expression", "bar-source 1: bar" + bare));
    EXPECT_THAT(findings(plotOf(PlotKind::errorbar, ErrorbarPlotData{})),
                ElementsAre("errorbar-x 1: errorbar plot requires an x expression",
                            "errorbar-y 1: errorbar plot requires a y expression",
                            "errorbar-yerr 1: errorbar plot requires a yerr expression",
                            "errorbar-source 1: errorbar" + bare));
}

TEST(PlotChecks, TaskPlotsHaveTheirTaskAsSource) {
    EXPECT_THAT(findings(plotOf(PlotKind::curve, CurvePlotData{}, PlotScope::task)),
                ElementsAre("curve-x 1: curve plot requires an x expression",
                            "curve-y 1: curve plot requires at least one y series"));
    EXPECT_THAT(findings(plotOf(PlotKind::convergence, ConvergencePlotData{}, PlotScope::task)),
                ElementsAre("convergence-x 1: convergence plot requires an x expression",
                            "convergence-y 1: convergence plot requires at least one y series"));
}

TEST(PlotChecks, Spectrum) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    SpectrumPlotData data;
    data.x = data.y = seriesOf("");
    const auto of = [&] { return findings(plotOf(PlotKind::spectrum, data, PlotScope::task)); };
    for (const auto mode : {SpectrumMode::broadened, SpectrumMode::sticksBroadened}) {
        data.mode = mode;
        EXPECT_THAT(of(),
                    ElementsAre("spectrum-broaden 1: broadened spectrum requires a broadening function"));
    }
    data.broadening = BroadenFunction::gaussian;
    for (const double fwhm : {0.0, -1.0, nan}) {
        data.fwhm = fwhm;
        EXPECT_THAT(of(), ElementsAre("spectrum-fwhm 1: spectrum FWHM must be positive"));
    }
    data.fwhm = 5;
    EXPECT_THAT(of(), IsEmpty());
    data.mode = SpectrumMode::sampled;
    EXPECT_THAT(
        of(), ElementsAre("spectrum-sampled-broaden 1: sampled spectrum already contains a curve and cannot "
                          "use 'broaden'"));
    data.mode = SpectrumMode::sticks;
    data.rangeDeclared = true;
    for (const auto& [low, high] :
         std::vector<std::pair<double, double>>{{1, 1}, {2, 1}, {nan, 1}, {1, nan}}) {
        data.rangeLow = low;
        data.rangeHigh = high;
        EXPECT_THAT(of(), ElementsAre("spectrum-range 1: spectrum range must be increasing"));
    }
    data.rangeHigh = 2;
    EXPECT_THAT(of(), IsEmpty());
}

TEST(PlotChecks, Histogram) {
    HistogramPlotData data;
    data.bins = 0;
    data.rangeDeclared = true;
    EXPECT_THAT(findings(plotOf(PlotKind::histogram, data)),
                ElementsAre("histogram-x 1: histogram plot requires an x expression",
                            "histogram-bins 1: histogram bins must be positive",
                            "histogram-range 1: histogram range must be increasing",
                            "histogram-source 1: histogram plot requires a data source"));
}

TEST(PlotChecks, FrontierColumns) {
    FrontierPlotData data;
    data.unit.clear();
    data.columns.resize(3);
    data.columns[1] = {"a", "a", "a", 0, false, inside};
    data.columns[2] = {"a", "a", "", 0, false, inside};
    EXPECT_THAT(findings(plotOf(PlotKind::frontier, data)),
                ElementsAre("frontier-unit 1: frontier plot requires a non-empty unit",
                            "frontier-column-id 1: frontier column id must not be empty",
                            "frontier-column-task 1: frontier column '' has no task",
                            "frontier-column-duplicate 4: duplicate frontier column id 'a'",
                            "frontier-column-task 4: frontier column 'a' has no task"));
}

TEST(PlotChecks, LevelPlotsWithoutColumnsNeedASource) {
    const std::string forms =
        "'from self', 'from task <name>', 'from variants <template>', or column statements";
    const std::string others = "'from task <name>', 'from variants <template>', or column statements";
    // scope, source, and what is wrong with it: nothing, unsupported, missing
    const std::vector<std::tuple<PlotScope, PlotSourceKind, int>> rows{
        {PlotScope::task, PlotSourceKind::self, 0},
        {PlotScope::task, PlotSourceKind::unspecified, 0},
        {PlotScope::task, PlotSourceKind::project, 1},
        {PlotScope::task, PlotSourceKind::derived, 1},
        {PlotScope::project, PlotSourceKind::self, 1},
        {PlotScope::project, PlotSourceKind::project, 1},
        {PlotScope::project, PlotSourceKind::derived, 1},
        {PlotScope::project, PlotSourceKind::unspecified, 2},
        {PlotScope::project, PlotSourceKind::task, 0},
        {PlotScope::project, PlotSourceKind::variants, 0},
    };
    for (const auto& [scope, source, fault] : rows) {
        auto frontier = frontierPlot(scope);
        auto excited = plotOf(PlotKind::excited, ExcitedPlotData{}, scope);
        frontier.sourceKind = excited.sourceKind = source;
        std::vector<std::string> expectedFrontier;
        std::vector<std::string> expectedExcited;
        if (fault == 1) {
            expectedFrontier = {"frontier-source 1: frontier plot supports " + forms};
            expectedExcited = {"excited-source 1: excited-state level plot supports " + forms};
        } else if (fault == 2) {
            expectedFrontier = {"frontier-source 1: project-level frontier plot requires " + others};
            expectedExcited = {"excited-source 1: project-level excited-state level plot requires " + others};
        }
        EXPECT_EQ(findings(frontier), expectedFrontier);
        EXPECT_EQ(findings(excited), expectedExcited);
        std::get<FrontierPlotData>(frontier.data).columns = {{"a", "a", "a", 0, false, inside}};
        EXPECT_THAT(findings(frontier), IsEmpty());
    }
}

TEST(PlotChecks, ExcitedColumnsRootsAndArrows) {
    ExcitedPlotData data;
    data.unit.clear();
    data.columns = {
        {"", "", "t", 0, true, inside}, {"a", "", "", 1, true, inside}, {"a", "", "t", -1, true, inside}};
    data.roots = {1, 0, -1};
    data.arrows = {
        {"", 1, "a", 0, "", ArrowTargetMode::explicitRoot, ArrowLineStyle::solid, inside},
        {"a", 0, "", 1, "", ArrowTargetMode::firstLower, ArrowLineStyle::solid, inside},
        {"b", 1, "c", 1, "", ArrowTargetMode::explicitRoot, ArrowLineStyle::solid, inside},
        {"a", 1, "", 0, "d", ArrowTargetMode::firstHigher, ArrowLineStyle::solid, inside},
    };
    auto plot = plotOf(PlotKind::excited, data);
    const std::vector<std::string> columns{
        "excited-unit 1: excited-state level plot requires a non-empty unit",
        "excited-column-id 4: excited-state level column id must not be empty",
        "excited-column-multiplicity 4: excited-state level column '' has an invalid multiplicity",
        "excited-column-task 4: excited-state level column 'a' has no task",
        "excited-column-duplicate 4: duplicate excited-state level column id 'a'",
        "excited-column-multiplicity 4: excited-state level column 'a' has an invalid multiplicity",
    };
    const std::vector<std::string> arrows{
        "excited-root 1: excited-state root selectors must be positive",
        "excited-root 1: excited-state root selectors must be positive",
        "excited-arrow-from 4: excited-state arrow requires 'from <column> root <n>'",
        "excited-arrow-to 4: explicit excited-state arrow requires 'to <column> root <n>'",
        "excited-arrow-from 4: excited-state arrow requires 'from <column> root <n>'",
        "excited-arrow-target 4: relative excited-state arrow requires a target column",
    };
    auto expected = columns;
    expected.insert(expected.end(), arrows.begin(), arrows.end());
    // The column without an id is known by its empty id; a relative target without a column is reported once.
    expected.insert(expected.end(),
                    {
                        "excited-arrow-column 4: excited-state arrow references unknown column 'b'",
                        "excited-arrow-column 4: excited-state arrow references unknown column 'c'",
                        "excited-arrow-column 4: excited-state arrow references unknown column 'd'",
                    });
    EXPECT_EQ(findings(plot), expected);

    data.columns.clear();
    data.unit = "eV";
    plot = plotOf(PlotKind::excited, data, PlotScope::task);
    EXPECT_EQ(findings(plot), arrows) << "without columns an arrow's columns are not looked up";
}

TEST(PlotChecks, FindingsOfParsedPlotsStandWhereTheyBelong) {
    EXPECT_EQ(faultOf("@plot excited e\n  column a\n  column a"),
              "a.mq:3:3-3:10: error: plot 'e': duplicate excited-state level column id 'a'");
    EXPECT_EQ(faultOf("@plot excited e\n  column a\n  arrow a 1 to b 1"),
              "a.mq:3:3-3:18: error: plot 'e': excited-state arrow references unknown column 'b'");
    EXPECT_EQ(faultOf("@plot curve c\n  from project\n  x a\n  series b = c\n  series b = d"),
              "a.mq:5:3-5:14: error: plot 'c': duplicate plot series id 'b'");
    EXPECT_EQ(faultOf("%plot curve\n  series b = d"),
              "a.mq:1:1-1:12: error: plot 'curve': curve plot requires an x expression");
}

} // namespace
} // namespace morquill::taskdsl::plot
