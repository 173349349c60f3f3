// What the statements about data leave in the record. Their messages are the matter of plot_parser_test.cpp.

#include "fixtures/plot_fixture.h"
#include "taskdsl/expr/plot_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum PlotKind;

std::string printed(const PlotSeries& series) {
    return renderPlotExpression(series.expression);
}

TEST(DataStatements, XGoesToEveryKindThatHasOneAndTheLastCounts) {
    const auto xOf = [](PlotKind kind) {
        KindReading reading(kind);
        reading.read(readX, "x a").read(readX, "x step + 1 label 'Step'");
        std::string text;
        std::visit(
            [&](auto& data) {
                if constexpr (requires { data.x; }) {
                    text = printed(data.x) + "|" + data.x.label;
                }
            },
            reading.plot().data);
        return text;
    };
    for (const auto kind : {convergence, curve, spectrum, scatter, heatmap, histogram, bar, errorbar}) {
        EXPECT_EQ(xOf(kind), "step + 1|Step") << plotKindName(kind);
    }
}

TEST(DataStatements, YIsOneSeriesOrOneOfMany) {
    EXPECT_EQ(printed(KindReading(bar).read(readY, "y a").read(readY, "y b").data<BarPlotData>().y), "b");
    const auto curves = KindReading(curve).read(readY, "y a").read(readY, "y b").data<CurvePlotData>().series;
    ASSERT_EQ(curves.size(), 2U);
    EXPECT_EQ(printed(curves[0]) + printed(curves[1]) + curves[0].id, "ab");
    KindReading once(scatter);
    once.read(readY, "y a");
    EXPECT_EQ(once.fault(readY, "y b"), atStatement("scatter plot accepts exactly one y expression"));
    EXPECT_EQ(printed(once.data<ScatterPlotData>().y), "a");
    EXPECT_EQ(printed(KindReading(heatmap).read(readZ, "z -q").data<HeatmapPlotData>().z), "-q");
    EXPECT_EQ(printed(KindReading(errorbar).read(readYerr, "yerr sd").data<ErrorbarPlotData>().yerr), "sd");
}

TEST(DataStatements, ASeriesTakesModifiersAfterItOrInItsBody) {
    KindReading reading(convergence);
    reading.read(readSeries, "series e_1 = a - b label 'E' axis y2");
    reading.read(readSeries, "series g = grad:", {"label 'Gradient'", "scale log10"});
    const auto& series = reading.data<ConvergencePlotData>().series;
    ASSERT_EQ(series.size(), 2U);
    EXPECT_EQ(series[0].id + "|" + printed(series[0]) + "|" + series[0].label, "e_1|a - b|E");
    EXPECT_EQ(series[0].axis, PlotAxis::y2);
    EXPECT_EQ(series[1].id + "|" + printed(series[1]) + "|" + series[1].label, "g|grad|Gradient");
    EXPECT_TRUE(series[1].logScale);
    EXPECT_EQ(reading.reading.next, 2U);
    EXPECT_EQ(reading.fault(readSeries, "series a = b:"),
              atStatement("series declaration ending with ':' requires an indented body"));
    EXPECT_EQ(reading.fault(readSeries, "series a = b:", {"colour red"}),
              "a.mq:6:5-6:20: error: unsupported series modifier 'colour'");
    EXPECT_EQ(reading.fault(readSeries, "series 1a = b"),
              atStatement("series id must match [A-Za-z_][A-Za-z0-9_]*"));
    EXPECT_EQ(reading.fault(readSeries, "series f(x=1)"),
              atStatement("series requires '<id> = <expression>'"));
    EXPECT_EQ(series.size(), 2U) << "what was refused is not kept";
}

TEST(DataStatements, AThresholdNeedsANumber) {
    KindReading reading(convergence);
    reading.read(readThreshold, "threshold max_force value 4.5e-4 label 'max F' unit au axis right");
    const auto& line = reading.data<ConvergencePlotData>().thresholds.at(0);
    EXPECT_EQ(renderPlotExpression(line.property), "max_force");
    EXPECT_EQ(line.value, 4.5e-4);
    EXPECT_EQ(line.label + "|" + line.unit, "max F|au");
    EXPECT_EQ(line.axis, PlotAxis::y2);
    EXPECT_EQ(formatSpan(line.span), "a.mq:5:3-5:20");
    EXPECT_EQ(reading.fault(readThreshold, "threshold f"),
              atStatement("threshold requires 'value <number>'"));
    EXPECT_EQ(reading.fault(readThreshold, "threshold f value x"),
              atStatement("threshold value must be numeric"));
}

TEST(DataStatements, RelativeIsToAPointOfABarrierOnly) {
    struct Row {
        const char* text;
        RelativeMode mode;
        const char* point;
    };
    const Row rows[] = {
        {"relative to ts", RelativeMode::toPoint, "ts"}, {"relative TO 'a b'", RelativeMode::toPoint, "a b"},
        {"relative first", RelativeMode::first, ""},     {"relative min", RelativeMode::minimum, ""},
        {"relative minimum", RelativeMode::minimum, ""}, {"relative none", RelativeMode::none, ""},
    };
    for (const auto& [text, mode, point] : rows) {
        KindReading reading(barrier);
        reading.data<BarrierPlotData>().relativePoint = "old";
        reading.read(readRelative, text);
        EXPECT_EQ(reading.data<BarrierPlotData>().relativeMode, mode) << text;
        EXPECT_EQ(reading.data<BarrierPlotData>().relativePoint, point) << text;
    }
    EXPECT_EQ(KindReading(curve).read(readRelative, "relative first").data<CurvePlotData>().relativeMode,
              RelativeMode::first);
    EXPECT_EQ(
        KindReading(curve).fault(readRelative, "relative to a"),
        atStatement("curve plots support only 'relative first', 'relative minimum', or 'relative none'"));
    EXPECT_EQ(KindReading(barrier).fault(readRelative, "relative MAX"),
              atStatement("unsupported relative mode 'max'"));
}

TEST(DataStatements, EveryKindSortsInItsOwnWay) {
    EXPECT_TRUE(KindReading(curve).read(readSort, "sort by x").data<CurvePlotData>().sortByX);
    EXPECT_TRUE(KindReading(errorbar).read(readSort, "sort X").data<ErrorbarPlotData>().sortByX);
    EXPECT_FALSE(KindReading(spectrum).read(readSort, "sort none").data<SpectrumPlotData>().sortByX);
    EXPECT_TRUE(KindReading(spectrum)
                    .read(readSort, "sort false")
                    .read(readSort, "sort by x")
                    .data<SpectrumPlotData>()
                    .sortByX);
    struct Row {
        const char* text;
        bool enabled;
        bool descending;
    };
    const Row rows[] = {
        {"sort by y", true, true},   {"sort y asc", true, false}, {"sort by y Ascending", true, false},
        {"sort y desc", true, true}, {"sort none", false, true},
    };
    for (const auto& [text, enabled, descending] : rows) {
        const auto data = KindReading(bar).read(readSort, text).data<BarPlotData>();
        EXPECT_EQ(data.sortEnabled, enabled) << text;
        EXPECT_EQ(data.sortDescending, descending) << text;
    }
    EXPECT_EQ(KindReading(bar).fault(readSort, "sort by x"),
              atStatement("bar sort supports only 'sort by y'"));
    EXPECT_EQ(KindReading(curve).fault(readSort, "sort none"), atStatement("only 'sort by x' is supported"));
}

TEST(DataStatements, ABroadeningStandsForItselfWhenItIsRepeated) {
    KindReading reading(spectrum);
    reading.read(readMode, "mode sticks+broadened").read(readBroaden, "broaden gaussian fwhm 0.3 unit eV");
    auto& data = reading.data<SpectrumPlotData>();
    EXPECT_EQ(data.mode, SpectrumMode::sticksBroadened);
    EXPECT_EQ(data.broadening, BroadenFunction::gaussian);
    EXPECT_EQ(data.fwhm, 0.3);
    EXPECT_EQ(data.fwhmUnit, "eV");
    reading.read(readBroaden, "broaden GAUSSIAN 20");
    EXPECT_EQ(data.fwhm, 20);
    EXPECT_EQ(data.fwhmUnit, "");
    EXPECT_EQ(reading.fault(readBroaden, "broaden lorentzian 1"),
              atStatement("unsupported spectrum broadening function 'lorentzian'"));
    EXPECT_EQ(reading.fault(readBroaden, "broaden gaussian"), atStatement("broaden requires fwhm <number>"));
}

TEST(DataStatements, ARangeIsTwoNumbers) {
    const auto data = KindReading(histogram).read(readRange, "range -1.5 2e2").data<HistogramPlotData>();
    EXPECT_TRUE(data.rangeDeclared);
    EXPECT_EQ(data.rangeLow, -1.5);
    EXPECT_EQ(data.rangeHigh, 200);
    EXPECT_TRUE(KindReading(spectrum).read(readRange, "range 1 2").data<SpectrumPlotData>().rangeDeclared);
    for (const char* text : {"range", "range 1", "range 1 x", "range 1 2 3"}) {
        EXPECT_EQ(KindReading(histogram).fault(readRange, text),
                  atStatement("range requires two numeric bounds"))
            << text;
    }
}

TEST(DataStatements, BinsAndLimitAreOneCount) {
    EXPECT_EQ(KindReading(histogram).read(readBins, "bins 12").data<HistogramPlotData>().bins, 12);
    const auto limited = KindReading(bar).read(readLimit, "limit 9223372036854775807").data<BarPlotData>();
    EXPECT_EQ(limited.limit, 9223372036854775807);
    EXPECT_TRUE(limited.limitDeclared);
    EXPECT_EQ(KindReading(histogram).fault(readBins, "bins 0"), atStatement("bins must be positive"));
    EXPECT_EQ(KindReading(histogram).fault(readBins, "bins -3"), atStatement("bins must be positive"));
    EXPECT_EQ(KindReading(histogram).fault(readBins, "bins many"), atStatement("bins must be an integer"));
    EXPECT_EQ(KindReading(bar).fault(readLimit, "limit 9223372036854775808"),
              atStatement("limit must be an integer"));
    EXPECT_EQ(KindReading(bar).fault(readLimit, "limit 1 2"),
              atStatement("limit requires one integer value"));
}

TEST(DataStatements, FlagsOfHistogramAndScatter) {
    for (const char* yes : {"density", "density true", "density YES", "density 1"}) {
        EXPECT_TRUE(KindReading(histogram).read(readDensity, yes).data<HistogramPlotData>().density) << yes;
    }
    KindReading reading(scatter);
    auto& data = reading.data<ScatterPlotData>();
    reading.read(readDiagonal, "diagonal y=x")
        .read(readFit, "fit linear")
        .read(readMetrics, "metrics R2 mae");
    EXPECT_TRUE(data.diagonal);
    EXPECT_TRUE(data.fitLinear);
    EXPECT_THAT(data.metrics, ElementsAre("r2", "mae"));
    reading.read(readFit, "fit none").read(readMetrics, "metrics rmse");
    EXPECT_FALSE(data.fitLinear);
    EXPECT_THAT(data.metrics, ElementsAre("rmse"));
    EXPECT_EQ(reading.fault(readDiagonal, "diagonal no"), atStatement("diagonal accepts no value or y=x"));
    EXPECT_EQ(reading.fault(readMetrics, "metrics chi2"), atStatement("unsupported scatter metric 'chi2'"));
}

TEST(BarrierPoints, RelativeModes) {
    const std::vector<std::pair<std::string, RelativeMode>> rows{
        {"relative first", RelativeMode::first},
        {"relative minimum", RelativeMode::minimum},
        {"relative MIN", RelativeMode::minimum},
        {"relative none", RelativeMode::none},
        {"relative to 'a' b", RelativeMode::toPoint}};
    for (const auto& [statement, mode] : rows) {
        EXPECT_EQ(dataWith<BarrierPlotData>("barrier", statement).relativeMode, mode) << statement;
    }
}

TEST(PlotSeriesStatements, ModifiersInAnyOrder) {
    const auto series = dataWith<CurvePlotData>(
        "curve",
        "y energy(self) * 627.5 label \"E \\\"rel\\\"\" unit 'kcal/mol' log axis right style linespoints");
    const auto& y = series.series.back();
    EXPECT_EQ(y.id, "");
    EXPECT_EQ(renderPlotExpression(y.expression), "energy(self) * 627.5");
    EXPECT_EQ(y.label, "E \"rel\"");
    EXPECT_EQ(y.unit, "kcal/mol");
    EXPECT_TRUE(y.logScale);
    EXPECT_EQ(y.axis, PlotAxis::y2);
    EXPECT_TRUE(y.axisDeclared);
    EXPECT_EQ(y.style, PlotStyle::linepoints);
    EXPECT_TRUE(y.styleDeclared);
    EXPECT_EQ(formatSpan(y.span), "a.mq:5:1-5:89");
}

TEST(PlotSeriesStatements, ModifierValues) {
    const std::vector<std::pair<std::string, bool>> logRows{{"y e log", true},
                                                            {"y e log on", true},
                                                            {"y e log \"OFF\"", false},
                                                            {"y e log false", false},
                                                            {"y e log linear", false},
                                                            {"y e log scale linear", false},
                                                            {"y e scale linear log", true}};
    for (const auto& [statement, logScale] : logRows) {
        EXPECT_EQ(dataWith<CurvePlotData>("curve", statement).series.back().logScale, logScale) << statement;
    }
    EXPECT_TRUE(dataWith<CurvePlotData>("curve", "y e scale LOG10").series.back().logScale);
    EXPECT_EQ(dataWith<CurvePlotData>("curve", "y e axis left").series.back().axis, PlotAxis::y);
}

TEST(PlotSeriesStatements, KeywordsSplitWhereverTheyBeginAWord) {
    // On one line "log" is taken for the option of that name, in a body it is the value of "scale".
    EXPECT_EQ(messageWith("curve", "y e scale log"), "series scale requires linear or log10");
    EXPECT_TRUE(dataWith<CurvePlotData>("curve", "series a = e:\n scale log").series.back().logScale);
    EXPECT_EQ(messageWith("curve", "y log(e)"), "y statement requires an expression");
    EXPECT_EQ(messageWith("curve", "y abs(log(e))"), "no fault");
}

TEST(PlotSeriesStatements, BodiesTakeDeeperLines) {
    const auto data = dataWith<CurvePlotData>("curve", "series e1 = a + f(x=1):\n"
                                                       "  label \"first\"\n"
                                                       "  # a comment\n"
                                                       "\n"
                                                       "\tstyle points\n"
                                                       "  LOG\n"
                                                       "y b\n");
    ASSERT_EQ(data.series.size(), 3U);
    EXPECT_EQ(data.series[1].id, "e1");
    EXPECT_EQ(renderPlotExpression(data.series[1].expression), "a + f(x=1)");
    EXPECT_EQ(data.series[1].label, "first");
    EXPECT_EQ(data.series[1].style, PlotStyle::points);
    EXPECT_TRUE(data.series[1].logScale);
    EXPECT_EQ(data.series[2].id, "");
}

TEST(PlotSeriesStatements, TheLastSingleValuedStatementWins) {
    const auto spectrum = dataWith<SpectrumPlotData>("spectrum", "y a\nintensity b\nx c\nx d");
    EXPECT_EQ(renderPlotExpression(spectrum.y.expression), "b");
    EXPECT_EQ(renderPlotExpression(spectrum.x.expression), "d");
    EXPECT_EQ(parsedWith("bar", "title a\ntitle \"b c\"").title, "b c");
    EXPECT_EQ(parsedWith("bar", "title a\ntitle").title, "");
}

TEST(PlotThresholds, AllOptions) {
    const auto data = dataWith<ConvergencePlotData>(
        "convergence",
        "threshold max_force value 4.5E-4 label \"Max F\" unit a.u. axis y2\nthreshold rms value 1 x");
    ASSERT_EQ(data.thresholds.size(), 2U);
    EXPECT_EQ(renderPlotExpression(data.thresholds[0].property), "max_force");
    EXPECT_EQ(data.thresholds[0].value, 4.5e-4);
    EXPECT_EQ(data.thresholds[0].label, "Max F");
    EXPECT_EQ(data.thresholds[0].unit, "a.u.");
    EXPECT_EQ(data.thresholds[0].axis, PlotAxis::y2);
    EXPECT_EQ(data.thresholds[1].axis, PlotAxis::y);
}

TEST(SpectrumStatements, ModeBroadeningRangeAndSort) {
    const auto data = dataWith<SpectrumPlotData>(
        "spectrum", "mode OVERLAY\nbroaden Gaussian fwhm 20 unit cm-1\nrange 400 4000\nsort NONE");
    EXPECT_EQ(data.mode, SpectrumMode::sticksBroadened);
    EXPECT_EQ(data.broadening, BroadenFunction::gaussian);
    EXPECT_EQ(data.fwhm, 20);
    EXPECT_EQ(data.fwhmUnit, "cm-1");
    EXPECT_TRUE(data.rangeDeclared);
    EXPECT_EQ(data.rangeLow, 400);
    EXPECT_EQ(data.rangeHigh, 4000);
    EXPECT_FALSE(data.sortByX);
    EXPECT_EQ(dataWith<SpectrumPlotData>("spectrum", "broaden gaussian 12.5").fwhm, 12.5);
    EXPECT_TRUE(dataWith<SpectrumPlotData>("spectrum", "sort none\nsort by x").sortByX);
}

TEST(BarStatements, SortForms) {
    const std::vector<std::tuple<std::string, bool, bool>> rows{{"sort by y", true, true},
                                                                {"sort y", true, true},
                                                                {"sort BY Y asc", true, false},
                                                                {"sort y ascending", true, false},
                                                                {"sort y desc", true, true},
                                                                {"sort by y descending", true, true},
                                                                {"sort none", false, true},
                                                                {"sort false", false, true},
                                                                {"sort y asc\nsort none", false, true}};
    for (const auto& [statement, enabled, descending] : rows) {
        const auto data = dataWith<BarPlotData>("bar", statement);
        EXPECT_EQ(data.sortEnabled, enabled) << statement;
        EXPECT_EQ(data.sortDescending, descending) << statement;
    }
    EXPECT_EQ(dataWith<BarPlotData>("bar", "limit 10").limit, 10);
    EXPECT_TRUE(dataWith<BarPlotData>("bar", "limit 10").limitDeclared);
}

TEST(HistogramStatements, BinsAndDensity) {
    EXPECT_EQ(dataWith<HistogramPlotData>("histogram", "").bins, 30);
    EXPECT_EQ(dataWith<HistogramPlotData>("histogram", "bins 12abc").bins, 12);
    EXPECT_EQ(dataWith<HistogramPlotData>("histogram", "bins 5000000000").bins, 5000000000);
    for (const std::string_view text : {"density", "density TRUE", "density yes", "density 1"}) {
        EXPECT_TRUE(dataWith<HistogramPlotData>("histogram", text).density) << text;
    }
    for (const std::string_view text : {"density false", "density no", "density 0"}) {
        EXPECT_FALSE(dataWith<HistogramPlotData>("histogram", "density\n" + std::string(text)).density)
            << text;
    }
}

TEST(ScatterStatements, DiagonalFitAndMetrics) {
    for (const std::string_view text : {"diagonal", "diagonal y=x", "diagonal YX", "diagonal true"}) {
        EXPECT_TRUE(dataWith<ScatterPlotData>("scatter", text).diagonal) << text;
    }
    EXPECT_TRUE(dataWith<ScatterPlotData>("scatter", "fit LINEAR").fitLinear);
    EXPECT_FALSE(dataWith<ScatterPlotData>("scatter", "fit linear\nfit none").fitLinear);
    EXPECT_FALSE(dataWith<ScatterPlotData>("scatter", "fit linear\nfit false").fitLinear);
    EXPECT_THAT(dataWith<ScatterPlotData>("scatter", "metrics mae\nmetrics R2 'rmse'").metrics,
                ElementsAre("r2", "rmse"));
    EXPECT_THAT(dataWith<ScatterPlotData>("scatter", "metrics mae\nmetrics").metrics, IsEmpty());
}

} // namespace
} // namespace morquill::taskdsl::plot
