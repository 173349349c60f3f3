#include "taskdsl/plot/model.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

struct KindDefaults {
    PlotData (*data)();
    std::optional<PlotStyle> style; ///< nothing leaves the style as it is
};

template <class Data>
PlotData defaults() {
    return Data{};
}

/// By the value of `PlotKind`.
constexpr std::array<KindDefaults, std::variant_size_v<PlotData>> kindDefaults{{
    {defaults<BarrierPlotData>, std::nullopt},
    {defaults<ConvergencePlotData>, std::nullopt},
    {defaults<CurvePlotData>, std::nullopt},
    {defaults<SpectrumPlotData>, std::nullopt},
    {defaults<ScatterPlotData>, std::nullopt},
    {defaults<HeatmapPlotData>, std::nullopt},
    {defaults<HistogramPlotData>, std::nullopt},
    {defaults<BarPlotData>, PlotStyle::boxes},
    {defaults<ErrorbarPlotData>, PlotStyle::points},
    {defaults<FrontierPlotData>, PlotStyle::lines},
    {defaults<ExcitedPlotData>, PlotStyle::lines},
}};

} // namespace

void applyKindDefaults(PlotSpec& plot) {
    const auto& [data, style] = kindDefaults.at(static_cast<std::size_t>(plot.kind));
    plot.data = data();
    plot.style = style.value_or(plot.style);
}

} // namespace morquill::taskdsl::plot
