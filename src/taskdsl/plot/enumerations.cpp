#include "taskdsl/plot/enumerations.h"

#include "support/word_table.h"

namespace morquill::taskdsl::plot {

namespace {

constexpr auto kindWords = wordTable<PlotKind>({
    {"barrier", PlotKind::barrier},
    {"convergence", PlotKind::convergence},
    {"curve", PlotKind::curve},
    {"spectrum", PlotKind::spectrum},
    {"scatter", PlotKind::scatter},
    {"correlation", PlotKind::scatter},
    {"heatmap", PlotKind::heatmap},
    {"matrixmap", PlotKind::heatmap},
    {"histogram", PlotKind::histogram},
    {"hist", PlotKind::histogram},
    {"bar", PlotKind::bar},
    {"barchart", PlotKind::bar},
    {"errorbar", PlotKind::errorbar},
    {"errorbars", PlotKind::errorbar},
    {"frontier", PlotKind::frontier},
    {"fmo", PlotKind::frontier},
    {"orbital-level", PlotKind::frontier},
    {"orbital_levels", PlotKind::frontier},
    {"orbitallevels", PlotKind::frontier},
    {"excited", PlotKind::excited},
    {"excited-state", PlotKind::excited},
    {"excited_state", PlotKind::excited},
    {"excited-level", PlotKind::excited},
    {"excited_levels", PlotKind::excited},
    {"excitedlevels", PlotKind::excited},
    {"eslevel", PlotKind::excited},
    {"eslevels", PlotKind::excited},
});

constexpr auto sourceWords = wordTable<PlotSourceKind>({
    {"unspecified", PlotSourceKind::unspecified},
    {"self", PlotSourceKind::self},
    {"task", PlotSourceKind::task},
    {"variants", PlotSourceKind::variants},
    {"matrix", PlotSourceKind::variants},
    {"project", PlotSourceKind::project},
    {"derived", PlotSourceKind::derived},
});

constexpr auto formatWords = wordTable<PlotOutputFormat>({
    {"png", PlotOutputFormat::png},
    {"svg", PlotOutputFormat::svg},
    {"pdf", PlotOutputFormat::pdf},
    {"dumb", PlotOutputFormat::dumb},
    {"cdxml", PlotOutputFormat::cdxml},
    {"chemdraw", PlotOutputFormat::cdxml},
});

constexpr auto styleWords = wordTable<PlotStyle>({
    {"lines", PlotStyle::lines},
    {"line", PlotStyle::lines},
    {"linepoints", PlotStyle::linepoints},
    {"linespoints", PlotStyle::linepoints},
    {"points", PlotStyle::points},
    {"boxes", PlotStyle::boxes},
    {"bars", PlotStyle::boxes},
});

constexpr auto themeWords = wordTable<PlotTheme>({
    {"auto", PlotTheme::automatic},
    {"default", PlotTheme::automatic},
    {"scientific", PlotTheme::scientific},
    {"classic", PlotTheme::scientific},
    {"sci", PlotTheme::scientific},
    {"report", PlotTheme::report},
    {"dashboard", PlotTheme::report},
    {"matrix", PlotTheme::matrix},
    {"heatmap", PlotTheme::matrix},
    {"minimal", PlotTheme::minimal},
    {"clean", PlotTheme::minimal},
    {"level", PlotTheme::level},
    {"levels", PlotTheme::level},
});

constexpr auto scaleWords = wordTable<AxisScale>({
    {"linear", AxisScale::linear},
    {"log10", AxisScale::log10},
    {"log", AxisScale::log10},
});

constexpr auto positionWords = wordTable<LegendPosition>({
    {"auto", LegendPosition::automatic},
    {"top right", LegendPosition::topRight},
    {"right top", LegendPosition::topRight},
    {"top left", LegendPosition::topLeft},
    {"left top", LegendPosition::topLeft},
    {"bottom right", LegendPosition::bottomRight},
    {"right bottom", LegendPosition::bottomRight},
    {"bottom left", LegendPosition::bottomLeft},
    {"left bottom", LegendPosition::bottomLeft},
    {"outside right", LegendPosition::outsideRight},
    {"right outside", LegendPosition::outsideRight},
    {"bottom", LegendPosition::bottom},
    {"outside bottom", LegendPosition::bottom},
});

constexpr auto missingWords = wordTable<MissingPolicy>({
    {"error", MissingPolicy::error},
    {"skip", MissingPolicy::skip},
    {"nan", MissingPolicy::nan},
});

constexpr auto modeWords = wordTable<SpectrumMode>({
    {"sticks", SpectrumMode::sticks},
    {"stick", SpectrumMode::sticks},
    {"broadened", SpectrumMode::broadened},
    {"smooth", SpectrumMode::broadened},
    {"gaussian", SpectrumMode::broadened},
    {"sticks+broadened", SpectrumMode::sticksBroadened},
    {"stick+broadened", SpectrumMode::sticksBroadened},
    {"both", SpectrumMode::sticksBroadened},
    {"overlay", SpectrumMode::sticksBroadened},
    {"sampled", SpectrumMode::sampled},
    {"native", SpectrumMode::sampled},
    {"grid", SpectrumMode::sampled},
});

constexpr auto broadenWords = wordTable<BroadenFunction>({
    {"none", BroadenFunction::none},
    {"gaussian", BroadenFunction::gaussian},
});

constexpr auto spinWords = wordTable<SpinSelection>({
    {"auto", SpinSelection::automatic},
    {"alpha", SpinSelection::alpha},
    {"a", SpinSelection::alpha},
    {"beta", SpinSelection::beta},
    {"b", SpinSelection::beta},
    {"both", SpinSelection::both},
    {"all", SpinSelection::both},
});

constexpr auto arrowStyleWords = wordTable<ArrowLineStyle>({
    {"solid", ArrowLineStyle::solid},
    {"line", ArrowLineStyle::solid},
    {"dashed", ArrowLineStyle::dashed},
    {"dash", ArrowLineStyle::dashed},
    {"dotted", ArrowLineStyle::dashed},
});

constexpr auto arrowTargetNames = wordTable<ArrowTargetMode>({
    {"explicit", ArrowTargetMode::explicitRoot},
    {"first lower", ArrowTargetMode::firstLower},
    {"first higher", ArrowTargetMode::firstHigher},
});
constexpr auto arrowTargetWords = wordTable<ArrowTargetMode>({
    {"lower", ArrowTargetMode::firstLower},
    {"below", ArrowTargetMode::firstLower},
    {"higher", ArrowTargetMode::firstHigher},
    {"above", ArrowTargetMode::firstHigher},
});

constexpr auto axisWords = wordTable<PlotAxis>({
    {"y", PlotAxis::y},
    {"left", PlotAxis::y},
    {"y2", PlotAxis::y2},
    {"right", PlotAxis::y2},
});

constexpr auto relativeWords = wordTable<RelativeMode>({
    {"none", RelativeMode::none},
    {"to", RelativeMode::toPoint},
    {"first", RelativeMode::first},
    {"minimum", RelativeMode::minimum},
    {"min", RelativeMode::minimum},
});

constexpr auto multiplicityWords = wordTable<std::int32_t>({
    {"singlet", 1},
    {"s", 1},
    {"doublet", 2},
    {"d", 2},
    {"triplet", 3},
    {"t", 3},
    {"quartet", 4},
    {"q", 4},
});

} // namespace

std::string_view plotKindName(PlotKind kind) noexcept {
    return kindWords.nameOf(kind);
}
std::string_view plotSourceName(PlotSourceKind source) noexcept {
    return sourceWords.nameOf(source);
}
std::string_view plotFormatName(PlotOutputFormat format) noexcept {
    return formatWords.nameOf(format);
}
std::string_view plotStyleName(PlotStyle style) noexcept {
    return styleWords.nameOf(style);
}
std::string_view plotThemeName(PlotTheme theme) noexcept {
    return themeWords.nameOf(theme);
}
std::string_view axisScaleName(AxisScale scale) noexcept {
    return scaleWords.nameOf(scale);
}
std::string_view legendPositionName(LegendPosition position) noexcept {
    return positionWords.nameOf(position);
}
std::string_view missingPolicyName(MissingPolicy policy) noexcept {
    return missingWords.nameOf(policy);
}
std::string_view spectrumModeName(SpectrumMode mode) noexcept {
    return modeWords.nameOf(mode);
}
std::string_view broadenFunctionName(BroadenFunction function) noexcept {
    return broadenWords.nameOf(function);
}
std::string_view spinSelectionName(SpinSelection spin) noexcept {
    return spinWords.nameOf(spin);
}
std::string_view arrowStyleName(ArrowLineStyle style) noexcept {
    return arrowStyleWords.nameOf(style);
}
std::string_view arrowTargetName(ArrowTargetMode mode) noexcept {
    return arrowTargetNames.nameOf(mode);
}
std::string_view plotAxisName(PlotAxis axis) noexcept {
    return axisWords.nameOf(axis);
}

std::string multiplicityText(std::int32_t multiplicity) {
    const auto word = multiplicityWords.wordOf(multiplicity);
    return word ? std::string(*word) : std::to_string(multiplicity);
}

std::optional<PlotKind> parsePlotKind(std::string_view text) noexcept {
    return kindWords.find(text);
}
std::optional<PlotSourceKind> parsePlotSource(std::string_view text) noexcept {
    const auto source = sourceWords.find(text);
    return source == PlotSourceKind::unspecified ? std::nullopt : source; // no body names that
}
std::optional<PlotOutputFormat> parsePlotFormat(std::string_view text) noexcept {
    return formatWords.find(text);
}
std::optional<PlotStyle> parsePlotStyle(std::string_view text) noexcept {
    return styleWords.find(text);
}
std::optional<PlotTheme> parsePlotTheme(std::string_view text) noexcept {
    return themeWords.find(text);
}
std::optional<AxisScale> parseAxisScale(std::string_view text) noexcept {
    return scaleWords.find(text);
}
std::optional<LegendPosition> parseLegendPosition(std::string_view text) noexcept {
    return positionWords.find(text);
}
std::optional<MissingPolicy> parseMissingPolicy(std::string_view text) noexcept {
    return missingWords.find(text);
}
std::optional<SpectrumMode> parseSpectrumMode(std::string_view text) noexcept {
    return modeWords.find(text);
}
std::optional<SpinSelection> parseSpinSelection(std::string_view text) noexcept {
    return spinWords.find(text);
}
std::optional<ArrowLineStyle> parseArrowStyle(std::string_view text) noexcept {
    return arrowStyleWords.find(text);
}
std::optional<ArrowTargetMode> parseArrowTarget(std::string_view text) noexcept {
    return arrowTargetWords.find(text);
}
std::optional<PlotAxis> parsePlotAxis(std::string_view text) noexcept {
    return axisWords.find(text);
}
std::optional<RelativeMode> parseRelativeMode(std::string_view text) noexcept {
    return relativeWords.find(text);
}
std::optional<std::int32_t> parseMultiplicityWord(std::string_view text) noexcept {
    return multiplicityWords.find(text);
}

} // namespace morquill::taskdsl::plot
