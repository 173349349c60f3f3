#pragma once

#include "taskdsl/plot/plot_block.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The closed vocabularies of the plot language. A name function returns the canonical text of a value, for
/// an unknown value that of value 0; a parse function accepts the canonical text and its aliases in any case.
namespace morquill::taskdsl::plot {

enum class PlotKind : std::int32_t {
    barrier = 0,
    convergence = 1,
    curve = 2,
    spectrum = 3,
    scatter = 4,
    heatmap = 5,
    histogram = 6,
    bar = 7,
    errorbar = 8,
    frontier = 9,
    excited = 10
};

/// Where the data of a plot come from.
enum class PlotSourceKind : std::int32_t {
    unspecified = 0,
    self = 1,
    task = 2,
    variants = 3,
    project = 4,
    derived = 5
};

enum class PlotOutputFormat : std::int32_t { png = 0, svg = 1, pdf = 2, dumb = 3, cdxml = 4 };
enum class PlotStyle : std::int32_t { lines = 0, linepoints = 1, points = 2, boxes = 3 };
enum class PlotTheme : std::int32_t {
    automatic = 0,
    scientific = 1,
    report = 2,
    matrix = 3,
    minimal = 4,
    level = 5
};
enum class AxisScale : std::int32_t { linear = 0, log10 = 1 };
enum class LegendPosition : std::int32_t {
    automatic = 0,
    topRight = 1,
    topLeft = 2,
    bottomRight = 3,
    bottomLeft = 4,
    outsideRight = 5,
    bottom = 6
};
/// What happens to a row with a missing value.
enum class MissingPolicy : std::int32_t { error = 0, skip = 1, nan = 2 };
enum class SpectrumMode : std::int32_t { sticks = 0, broadened = 1, sticksBroadened = 2, sampled = 3 };
enum class BroadenFunction : std::int32_t { none = 0, gaussian = 1 };
enum class SpinSelection : std::int32_t { automatic = 0, alpha = 1, beta = 2, both = 3 };
enum class ArrowLineStyle : std::int32_t { solid = 0, dashed = 1 };
enum class ArrowTargetMode : std::int32_t { explicitRoot = 0, firstLower = 1, firstHigher = 2 };
/// The axis that a series or threshold of a plot belongs to.
enum class PlotAxis : std::int32_t { y = 0, y2 = 1 };
/// What the values of a barrier or curve are relative to.
enum class RelativeMode : std::int32_t { none = 0, toPoint = 1, first = 2, minimum = 3 };

[[nodiscard]] std::string_view plotKindName(PlotKind kind) noexcept;
[[nodiscard]] std::string_view plotSourceName(PlotSourceKind source) noexcept;
[[nodiscard]] std::string_view plotFormatName(PlotOutputFormat format) noexcept;
[[nodiscard]] std::string_view plotStyleName(PlotStyle style) noexcept;
[[nodiscard]] std::string_view plotThemeName(PlotTheme theme) noexcept;
[[nodiscard]] std::string_view axisScaleName(AxisScale scale) noexcept;
[[nodiscard]] std::string_view legendPositionName(LegendPosition position) noexcept;
[[nodiscard]] std::string_view missingPolicyName(MissingPolicy policy) noexcept;
[[nodiscard]] std::string_view spectrumModeName(SpectrumMode mode) noexcept;
[[nodiscard]] std::string_view broadenFunctionName(BroadenFunction function) noexcept;
[[nodiscard]] std::string_view spinSelectionName(SpinSelection spin) noexcept;
[[nodiscard]] std::string_view arrowStyleName(ArrowLineStyle style) noexcept;
[[nodiscard]] std::string_view arrowTargetName(ArrowTargetMode mode) noexcept;
[[nodiscard]] std::string_view plotAxisName(PlotAxis axis) noexcept;
/// "singlet" to "quartet", the number for any other multiplicity.
[[nodiscard]] std::string multiplicityText(std::int32_t multiplicity);

[[nodiscard]] std::optional<PlotKind> parsePlotKind(std::string_view text) noexcept;
/// Nothing for "unspecified", which is not a word of the language.
[[nodiscard]] std::optional<PlotSourceKind> parsePlotSource(std::string_view text) noexcept;
[[nodiscard]] std::optional<PlotOutputFormat> parsePlotFormat(std::string_view text) noexcept;
[[nodiscard]] std::optional<PlotStyle> parsePlotStyle(std::string_view text) noexcept;
[[nodiscard]] std::optional<PlotTheme> parsePlotTheme(std::string_view text) noexcept;
[[nodiscard]] std::optional<AxisScale> parseAxisScale(std::string_view text) noexcept;
[[nodiscard]] std::optional<LegendPosition> parseLegendPosition(std::string_view text) noexcept;
[[nodiscard]] std::optional<MissingPolicy> parseMissingPolicy(std::string_view text) noexcept;
[[nodiscard]] std::optional<SpectrumMode> parseSpectrumMode(std::string_view text) noexcept;
[[nodiscard]] std::optional<SpinSelection> parseSpinSelection(std::string_view text) noexcept;
[[nodiscard]] std::optional<ArrowLineStyle> parseArrowStyle(std::string_view text) noexcept;
/// "lower", "below", "higher", "above": the words of a relative arrow target.
[[nodiscard]] std::optional<ArrowTargetMode> parseArrowTarget(std::string_view text) noexcept;
[[nodiscard]] std::optional<PlotAxis> parsePlotAxis(std::string_view text) noexcept;
[[nodiscard]] std::optional<RelativeMode> parseRelativeMode(std::string_view text) noexcept;
/// "singlet" to "quartet" and their first letters.
[[nodiscard]] std::optional<std::int32_t> parseMultiplicityWord(std::string_view text) noexcept;

} // namespace morquill::taskdsl::plot
