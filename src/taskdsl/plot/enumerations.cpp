#include "taskdsl/plot/enumerations.h"

#include "support/text.h"

#include <cstddef>

namespace morquill::taskdsl::plot {

namespace {

template <class E>
struct Word {
    std::string_view text;
    E value;
};

template <class E, std::size_t n>
std::string_view nameOf(const Word<E> (&words)[n], E value) noexcept {
    for (const auto& word : words) {
        if (word.value == value) {
            return word.text;
        }
    }
    return words[0].text;
}

template <class E, std::size_t n>
std::optional<E> valueOf(const Word<E> (&words)[n], std::string_view text) noexcept {
    for (const auto& word : words) {
        if (equalsNoCase(word.text, text)) {
            return word.value;
        }
    }
    return std::nullopt;
}

// The first row of a value is its canonical text, those behind it are read only.

constexpr Word<PlotKind> kindWords[] = {
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
};

constexpr Word<PlotSourceKind> sourceWords[] = {
    {"unspecified", PlotSourceKind::unspecified},
    {"self", PlotSourceKind::self},
    {"task", PlotSourceKind::task},
    {"variants", PlotSourceKind::variants},
    {"project", PlotSourceKind::project},
    {"derived", PlotSourceKind::derived},
};

constexpr Word<PlotOutputFormat> formatWords[] = {
    {"png", PlotOutputFormat::png},     {"svg", PlotOutputFormat::svg},
    {"pdf", PlotOutputFormat::pdf},     {"dumb", PlotOutputFormat::dumb},
    {"cdxml", PlotOutputFormat::cdxml}, {"chemdraw", PlotOutputFormat::cdxml},
};

constexpr Word<PlotStyle> styleWords[] = {
    {"lines", PlotStyle::lines},
    {"line", PlotStyle::lines},
    {"linepoints", PlotStyle::linepoints},
    {"linespoints", PlotStyle::linepoints},
    {"points", PlotStyle::points},
    {"boxes", PlotStyle::boxes},
    {"bars", PlotStyle::boxes},
};

constexpr Word<PlotTheme> themeWords[] = {
    {"auto", PlotTheme::automatic},        {"default", PlotTheme::automatic},
    {"scientific", PlotTheme::scientific}, {"classic", PlotTheme::scientific},
    {"sci", PlotTheme::scientific},        {"report", PlotTheme::report},
    {"dashboard", PlotTheme::report},      {"matrix", PlotTheme::matrix},
    {"heatmap", PlotTheme::matrix},        {"minimal", PlotTheme::minimal},
    {"clean", PlotTheme::minimal},         {"level", PlotTheme::level},
    {"levels", PlotTheme::level},
};

constexpr Word<AxisScale> scaleWords[] = {
    {"linear", AxisScale::linear},
    {"log10", AxisScale::log10},
    {"log", AxisScale::log10},
};

constexpr Word<LegendPosition> positionWords[] = {
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
};

constexpr Word<MissingPolicy> missingWords[] = {
    {"error", MissingPolicy::error},
    {"skip", MissingPolicy::skip},
    {"nan", MissingPolicy::nan},
};

constexpr Word<SpectrumMode> modeWords[] = {
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
};

constexpr Word<BroadenFunction> broadenWords[] = {
    {"none", BroadenFunction::none},
    {"gaussian", BroadenFunction::gaussian},
};

constexpr Word<SpinSelection> spinWords[] = {
    {"auto", SpinSelection::automatic}, {"alpha", SpinSelection::alpha}, {"a", SpinSelection::alpha},
    {"beta", SpinSelection::beta},      {"b", SpinSelection::beta},      {"both", SpinSelection::both},
    {"all", SpinSelection::both},
};

constexpr Word<ArrowLineStyle> arrowStyleWords[] = {
    {"solid", ArrowLineStyle::solid}, {"line", ArrowLineStyle::solid},    {"dashed", ArrowLineStyle::dashed},
    {"dash", ArrowLineStyle::dashed}, {"dotted", ArrowLineStyle::dashed},
};

constexpr Word<ArrowTargetMode> arrowTargetNames[] = {
    {"explicit", ArrowTargetMode::explicitRoot},
    {"first lower", ArrowTargetMode::firstLower},
    {"first higher", ArrowTargetMode::firstHigher},
};
constexpr Word<ArrowTargetMode> arrowTargetWords[] = {
    {"lower", ArrowTargetMode::firstLower},
    {"below", ArrowTargetMode::firstLower},
    {"higher", ArrowTargetMode::firstHigher},
    {"above", ArrowTargetMode::firstHigher},
};

constexpr Word<PlotAxis> axisWords[] = {
    {"y", PlotAxis::y},
    {"left", PlotAxis::y},
    {"y2", PlotAxis::y2},
    {"right", PlotAxis::y2},
};

} // namespace

std::string_view plotKindName(PlotKind kind) noexcept {
    return nameOf(kindWords, kind);
}
std::string_view plotSourceName(PlotSourceKind source) noexcept {
    return nameOf(sourceWords, source);
}
std::string_view plotFormatName(PlotOutputFormat format) noexcept {
    return nameOf(formatWords, format);
}
std::string_view plotStyleName(PlotStyle style) noexcept {
    return nameOf(styleWords, style);
}
std::string_view plotThemeName(PlotTheme theme) noexcept {
    return nameOf(themeWords, theme);
}
std::string_view axisScaleName(AxisScale scale) noexcept {
    return nameOf(scaleWords, scale);
}
std::string_view legendPositionName(LegendPosition position) noexcept {
    return nameOf(positionWords, position);
}
std::string_view missingPolicyName(MissingPolicy policy) noexcept {
    return nameOf(missingWords, policy);
}
std::string_view spectrumModeName(SpectrumMode mode) noexcept {
    return nameOf(modeWords, mode);
}
std::string_view broadenFunctionName(BroadenFunction function) noexcept {
    return nameOf(broadenWords, function);
}
std::string_view spinSelectionName(SpinSelection spin) noexcept {
    return nameOf(spinWords, spin);
}
std::string_view arrowStyleName(ArrowLineStyle style) noexcept {
    return nameOf(arrowStyleWords, style);
}
std::string_view arrowTargetName(ArrowTargetMode mode) noexcept {
    return nameOf(arrowTargetNames, mode);
}
std::string_view plotAxisName(PlotAxis axis) noexcept {
    return nameOf(axisWords, axis);
}

std::optional<PlotKind> parsePlotKind(std::string_view text) noexcept {
    return valueOf(kindWords, text);
}
std::optional<PlotOutputFormat> parsePlotFormat(std::string_view text) noexcept {
    return valueOf(formatWords, text);
}
std::optional<PlotStyle> parsePlotStyle(std::string_view text) noexcept {
    return valueOf(styleWords, text);
}
std::optional<PlotTheme> parsePlotTheme(std::string_view text) noexcept {
    return valueOf(themeWords, text);
}
std::optional<AxisScale> parseAxisScale(std::string_view text) noexcept {
    return valueOf(scaleWords, text);
}
std::optional<LegendPosition> parseLegendPosition(std::string_view text) noexcept {
    return valueOf(positionWords, text);
}
std::optional<MissingPolicy> parseMissingPolicy(std::string_view text) noexcept {
    return valueOf(missingWords, text);
}
std::optional<SpectrumMode> parseSpectrumMode(std::string_view text) noexcept {
    return valueOf(modeWords, text);
}
std::optional<SpinSelection> parseSpinSelection(std::string_view text) noexcept {
    return valueOf(spinWords, text);
}
std::optional<ArrowLineStyle> parseArrowStyle(std::string_view text) noexcept {
    return valueOf(arrowStyleWords, text);
}
std::optional<ArrowTargetMode> parseArrowTarget(std::string_view text) noexcept {
    return valueOf(arrowTargetWords, text);
}
std::optional<PlotAxis> parsePlotAxis(std::string_view text) noexcept {
    return valueOf(axisWords, text);
}

} // namespace morquill::taskdsl::plot
