#include "taskdsl/plot/model.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

TEST(ApplyKindDefaults, PutsAwayWhatAnotherKindHadSaid) {
    PlotSpec plot;
    plot.kind = PlotKind::histogram;
    HistogramPlotData old;
    old.bins = 7;
    old.density = true;
    plot.data = old;
    applyKindDefaults(plot);
    EXPECT_EQ(std::get<HistogramPlotData>(plot.data).bins, 30);
    EXPECT_FALSE(std::get<HistogramPlotData>(plot.data).density);
    plot.kind = PlotKind::spectrum;
    applyKindDefaults(plot);
    const auto& spectrum = std::get<SpectrumPlotData>(plot.data);
    EXPECT_EQ(spectrum.mode, SpectrumMode::sticks);
    EXPECT_TRUE(spectrum.sortByX);
    EXPECT_EQ(spectrum.broadening, BroadenFunction::none);
}

TEST(ApplyKindDefaults, TouchesTheStyleOfFourKindsAndNothingElse) {
    struct Row {
        PlotKind kind;
        PlotStyle style; ///< after a style that no kind has by default
    };
    const Row rows[] = {
        {PlotKind::barrier, PlotStyle::linepoints}, {PlotKind::curve, PlotStyle::linepoints},
        {PlotKind::scatter, PlotStyle::linepoints}, {PlotKind::bar, PlotStyle::boxes},
        {PlotKind::errorbar, PlotStyle::points},    {PlotKind::frontier, PlotStyle::lines},
        {PlotKind::excited, PlotStyle::lines},
    };
    for (const auto& [kind, style] : rows) {
        PlotSpec plot;
        plot.kind = kind;
        plot.style = PlotStyle::linepoints;
        plot.name = "n";
        plot.width = 12;
        plot.format = PlotOutputFormat::svg;
        applyKindDefaults(plot);
        EXPECT_EQ(plot.style, style) << plotKindName(kind);
        EXPECT_EQ(plot.name, "n");
        EXPECT_EQ(plot.width, 12);
        EXPECT_EQ(plot.format, PlotOutputFormat::svg);
        EXPECT_EQ(plot.kind, kind);
    }
}

TEST(PlotKindDefaults, TheDataAreThoseOfTheKind) {
    for (int kind = 0; kind < 11; ++kind) {
        PlotSpec plot;
        plot.kind = static_cast<PlotKind>(kind);
        plot.style = PlotStyle::linepoints;
        applyKindDefaults(plot);
        EXPECT_EQ(plot.data.index(), static_cast<std::size_t>(kind));
        const auto expected = kind == 7                 ? PlotStyle::boxes
                              : kind == 8               ? PlotStyle::points
                              : kind == 9 || kind == 10 ? PlotStyle::lines
                                                        : PlotStyle::linepoints;
        EXPECT_EQ(plot.style, expected) << kind;
    }
}

TEST(PlotKindDefaults, UnitsBinsAndSort) {
    EXPECT_EQ(BarrierPlotData{}.unit, "kcal/mol");
    EXPECT_EQ(FrontierPlotData{}.unit, "eV");
    EXPECT_EQ(ExcitedPlotData{}.unit, "eV");
    EXPECT_EQ(HistogramPlotData{}.bins, 30);
    EXPECT_TRUE(SpectrumPlotData{}.sortByX);
    EXPECT_TRUE(BarPlotData{}.sortDescending);
    EXPECT_TRUE(LegendSpec{}.visible);
}

} // namespace
} // namespace morquill::taskdsl::plot
