#include "taskdsl/plot/render_data.h"

#include "taskdsl/plot/printer.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

ExprRef name(const char* text) {
    return makeExpression(IdentifierExpr{text});
}

std::string printed(PlotKind kind, const PlotData& data) {
    Printer printer(kind, "");
    printer.deeper();
    printData(printer, data);
    return printer.take();
}

TEST(RenderData, LinesOfABar) {
    BarPlotData bar;
    bar.x.expression = name("task");
    bar.y.expression = name("energy");
    EXPECT_EQ(printed(PlotKind::bar, bar), "  x task\n  y energy\n");
    bar.sortEnabled = true;
    bar.sortDescending = false;
    bar.limit = 5;
    bar.limitDeclared = true;
    EXPECT_EQ(printed(PlotKind::bar, bar), "  x task\n  y energy\n  sort by y asc\n  limit 5\n");
}

TEST(RenderData, LinesOfAScatterKeepOptionsAndValuesApart) {
    ScatterPlotData scatter;
    scatter.x.expression = name("label");
    scatter.x.label = "a name";
    scatter.y.expression = name("energy");
    EXPECT_EQ(printed(PlotKind::scatter, scatter), "  x (label) label \"a name\"\n  y energy\n");
}

} // namespace
} // namespace morquill::taskdsl::plot
