// Texts that no parse leaves with a reference in them are filled by hand.

#include "taskdsl/plot/substitute_plot.h"

#include "fixtures/plot_fixture.h"

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

TEST(SubstitutePlot, ReachesEveryTextAndEveryNameInExpressions) {
    const ValueMap values{{"k", "v"}, {"x", "y z"}};
    const std::vector<std::pair<std::string, std::string>> cases{
        {"@plot barrier [k]\npoint [k]1 label [k] value energy([k]) + f([k]=[k], \"[k]\") - {{ [k].[k] }}\n"
         "point b value [k](1)\nrelative to [k]1\nunit [k]\ntitle [k][q]",
         "@plot barrier v\n  point v1 label \"v\" value energy(v) + f(v=v, \"v\") - {{ v.v }}\n"
         "  point b value v(1)\n  relative to v1\n  unit v\n  title \"v[q]\"\n"
         "  output \"Results/Plots/v.png\"\n  format png\n@end\n"},
        {"@plot convergence p\nfrom task [k]\nx [k] label [x] unit [k]\ny [k]\nthreshold [k] value 1 label "
         "[k] unit [k]\n"
         "axis x:\n label [k]\n unit [k]\naxis y:\n label [k]\naxis y2:\n unit [k]",
         "@plot convergence p\n  from task v\n  x v label \"y z\" unit v\n  y v\n"
         "  threshold v value 1 label \"v\" unit v\n"
         "  axis x:\n    label \"v\"\n    unit \"v\"\n  axis y:\n    label \"v\"\n  axis y2:\n    unit "
         "\"v\"\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"@plot curve p\nfrom derived('[k].t')\nx [k]\nseries a = [k] + 1:\n label [k]",
         "@plot curve p\n  from derived(\"v.t\")\n  x v\n  series a = v + 1 label \"v\"\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"%plot spectrum [k]\nx [k]\ny -[k]\nmode smooth\nbroaden gaussian 1 unit [k]",
         "%plot spectrum v\n  x v\n  y -v\n  mode broadened\n  broaden gaussian fwhm 1 unit v\n"
         "  output \"Results/Plots/[taskname]_v.png\"\n  format png\n"},
        {"@plot scatter p\nfrom project\nx [k]\ny [k]",
         "@plot scatter p\n  from project\n  x v\n  y v\n  output \"Results/Plots/p.png\"\n  format "
         "png\n@end\n"},
        {"@plot heatmap p\nfrom project\nx [k]\ny [k]\nz [k]",
         "@plot heatmap p\n  from project\n  x v\n  y v\n  z v\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"@plot histogram p\nfrom project\nx [k]", "@plot histogram p\n  from project\n  x v\n  bins 30\n"
                                                   "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"@plot bar p\nfrom project\nx [k]\ny [k]\noutput [k].svg",
         "@plot bar p\n  from project\n  x v\n  y v\n  style boxes\n  output \"v.svg\"\n  format "
         "svg\n@end\n"},
        {"@plot errorbar p\nfrom project\nx [k]\ny [k]\nyerr [k]",
         "@plot errorbar p\n  from project\n  x v\n  y v\n  yerr v\n  style points\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"@plot frontier p\ncolumn [k] label [x] task [k]t\norbitals [k] HOMO\nunit [k]",
         "@plot frontier p\n  column v label \"y z\" task \"vt\"\n  orbitals v HOMO\n  spin auto\n  unit v\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
        {"@plot excited p\ncolumn [k]\narrow [k] 1 to [k] 2\narrow [k] 1 to [k] lower\nunit [k]",
         "@plot excited p\n  column v\n  arrow from v root 1 to v root 2 style solid\n"
         "  arrow from v root 1 to v first lower style solid\n  unit v\n"
         "  output \"Results/Plots/p.png\"\n  format png\n@end\n"},
    };
    for (const auto& [written, expected] : cases) {
        auto plot = parsed(written);
        substitutePlot(plot, values);
        EXPECT_EQ(renderPlot(plot, ""), expected);
    }
}

TEST(SubstitutePlot, ReachesIdOwnerAndLegendAndLeavesTheRest) {
    PlotBlock block = blockOf("%plot curve [k]\nx a\nseries b = c\nlegend:\n  order b");
    block.ownerTask = "t[k]";
    auto plot = parsePlot(block);
    std::get<CurvePlotData>(plot.data).series[0].id = "[k]";
    std::get<CurvePlotData>(plot.data).relativePoint = "[k]";
    plot.legend.order = {"[k]"};
    const auto x = std::get<CurvePlotData>(plot.data).x.expression;
    const auto untouched = plot;
    substitutePlot(plot, {});
    EXPECT_EQ(plot.id, untouched.id);
    substitutePlot(plot, {{"k", "v"}});
    EXPECT_EQ(plot.id, "tv:v");
    EXPECT_EQ(plot.ownerTask, "tv");
    EXPECT_EQ(plot.name, "v");
    EXPECT_EQ(plot.kind, PlotKind::curve);
    EXPECT_EQ(plot.legend.order, std::vector<std::string>{"v"});
    EXPECT_EQ(std::get<CurvePlotData>(plot.data).series[0].id, "v");
    EXPECT_EQ(std::get<CurvePlotData>(plot.data).relativePoint, "v");
    EXPECT_EQ(std::get<CurvePlotData>(plot.data).x.expression, x) << "an expression without a key is shared";
    EXPECT_EQ(std::get<CurvePlotData>(untouched.data).series[0].id, "[k]");
    EXPECT_EQ(formatSpan(plot.span), formatSpan(untouched.span));
}

} // namespace
} // namespace morquill::taskdsl::plot
