// Texts that no parse leaves with a reference in them are filled by hand. What reading, substituting and
// printing a plot give together is the matter of render_test.cpp.

#include "taskdsl/plot/substitute_plot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;

const std::string ref = "a[k]";
const std::string put = "av";

PlotSeries series(const ExprRef& expression) {
    PlotSeries result;
    result.id = result.label = result.unit = ref;
    result.expression = expression;
    return result;
}

void expectPut(const PlotSeries& result) {
    EXPECT_EQ(result.id, put);
    EXPECT_EQ(result.label, put);
    EXPECT_EQ(result.unit, put);
    EXPECT_EQ(renderPlotExpression(result.expression), "f(v)");
}

const ExprRef call = parsePlotExpression("f([k])", {});

TEST(SubstitutePlot, ReachesTheTextsOfEveryPlot) {
    PlotSpec plot;
    for (std::string* text : {&plot.id, &plot.name, &plot.ownerTask, &plot.sourceArgument, &plot.outputPath,
                              &plot.title, &plot.xAxis.label, &plot.xAxis.unit, &plot.yAxis.label,
                              &plot.yAxis.unit, &plot.y2Axis.label, &plot.y2Axis.unit}) {
        *text = ref;
    }
    plot.legend.order = {ref, "b"};
    plot.span = {"[k].mq", 1, 1, 1, 5};
    substitutePlot(plot, {{"k", "v"}});
    for (const std::string* text :
         {&plot.id, &plot.name, &plot.ownerTask, &plot.sourceArgument, &plot.outputPath, &plot.title,
          &plot.xAxis.label, &plot.xAxis.unit, &plot.yAxis.label, &plot.yAxis.unit, &plot.y2Axis.label,
          &plot.y2Axis.unit}) {
        EXPECT_EQ(*text, put);
    }
    EXPECT_THAT(plot.legend.order, ElementsAre(put, "b"));
    EXPECT_EQ(plot.span.path, "[k].mq") << "spans stay";
}

TEST(SubstitutePlot, ReachesSeriesThresholdsAndMetrics) {
    PlotSpec plot;
    ConvergencePlotData convergence;
    convergence.x = series(call);
    convergence.series = {series(call), series(call)};
    convergence.thresholds.resize(1);
    convergence.thresholds[0].label = convergence.thresholds[0].unit = ref;
    convergence.thresholds[0].property = call;
    plot.data = convergence;
    substitutePlot(plot, {{"k", "v"}});
    const auto& result = std::get<ConvergencePlotData>(plot.data);
    expectPut(result.x);
    expectPut(result.series.at(0));
    expectPut(result.series.at(1));
    EXPECT_EQ(result.thresholds.at(0).label + result.thresholds.at(0).unit, put + put);
    EXPECT_EQ(renderPlotExpression(result.thresholds.at(0).property), "f(v)");
    EXPECT_EQ(renderPlotExpression(call), "f([k])") << "the tree is shared with others";

    ScatterPlotData scatter;
    scatter.x = scatter.y = series(call);
    scatter.metrics = {ref};
    plot.data = scatter;
    substitutePlot(plot, {{"k", "v"}});
    EXPECT_THAT(std::get<ScatterPlotData>(plot.data).metrics, ElementsAre(put));
    expectPut(std::get<ScatterPlotData>(plot.data).y);
}

TEST(SubstitutePlot, ReachesLevels) {
    PlotSpec plot;
    ExcitedPlotData excited;
    excited.unit = ref;
    excited.columns.resize(1);
    excited.columns[0].id = excited.columns[0].label = excited.columns[0].task = ref;
    excited.arrows.resize(1);
    excited.arrows[0].sourceColumn = excited.arrows[0].targetColumn = excited.arrows[0].relativeColumn = ref;
    plot.data = excited;
    substitutePlot(plot, {{"k", "v"}});
    const auto& result = std::get<ExcitedPlotData>(plot.data);
    EXPECT_EQ(result.unit, put);
    EXPECT_EQ(result.columns[0].id + result.columns[0].label + result.columns[0].task, put + put + put);
    EXPECT_EQ(result.arrows[0].sourceColumn + result.arrows[0].targetColumn + result.arrows[0].relativeColumn,
              put + put + put);
}

TEST(SubstitutePlot, WithoutAValueForItAReferenceStays) {
    PlotSpec plot;
    plot.title = ref;
    substitutePlot(plot, {});
    EXPECT_EQ(plot.title, ref);
    substitutePlot(plot, {{"other", "v"}});
    EXPECT_EQ(plot.title, ref);
}

} // namespace
} // namespace morquill::taskdsl::plot
