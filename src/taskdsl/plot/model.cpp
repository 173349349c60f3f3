#include "taskdsl/plot/model.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <tuple>
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

/// True also for two NaNs.
bool sameNumber(double left, double right) noexcept {
    return left == right || (std::isnan(left) && std::isnan(right));
}

/// Everything but the expression and the numbers.
auto plainFields(const PlotSeries& series) {
    return std::tie(series.id, series.label, series.unit, series.logScale, series.axis, series.axisDeclared,
                    series.style, series.styleDeclared, series.span);
}
auto plainFields(const BarrierPoint& point) {
    return std::tie(point.id, point.label, point.span);
}
auto plainFields(const ThresholdLine& line) {
    return std::tie(line.label, line.unit, line.axis, line.span);
}

} // namespace

bool operator==(const PlotSeries& left, const PlotSeries& right) {
    return plainFields(left) == plainFields(right) && equalExpressions(left.expression, right.expression);
}

bool operator==(const BarrierPoint& left, const BarrierPoint& right) {
    return plainFields(left) == plainFields(right) && equalExpressions(left.value, right.value);
}

bool operator==(const ThresholdLine& left, const ThresholdLine& right) {
    return plainFields(left) == plainFields(right) && sameNumber(left.value, right.value) &&
           equalExpressions(left.property, right.property);
}

void applyKindDefaults(PlotSpec& plot) {
    const auto& [data, style] = kindDefaults.at(static_cast<std::size_t>(plot.kind));
    plot.data = data();
    plot.style = style.value_or(plot.style);
}

PlotStyle defaultStyle(PlotKind kind) noexcept {
    const auto index = static_cast<std::size_t>(kind);
    const auto none = PlotStyle::lines;
    return index < kindDefaults.size() ? kindDefaults[index].style.value_or(none) : none;
}

} // namespace morquill::taskdsl::plot
