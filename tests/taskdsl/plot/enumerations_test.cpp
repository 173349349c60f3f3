#include "taskdsl/plot/enumerations.h"
#include "taskdsl/plot/model.h"

#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

/// The names of the values from 0 on, separated by "|", and after them that of a value that does not exist.
template <class E>
std::string names(std::string_view (*name)(E), int count) {
    std::string result;
    for (int value = 0; value < count; ++value) {
        result += std::string(name(static_cast<E>(value))) + "|";
    }
    return result + std::string(name(static_cast<E>(99)));
}

TEST(PlotEnumerations, NamesByValueAndOfUnknownValues) {
    EXPECT_EQ(names(plotKindName, 11),
              "barrier|convergence|curve|spectrum|scatter|heatmap|histogram|bar|errorbar|"
              "frontier|excited|barrier");
    EXPECT_EQ(names(plotSourceName, 6), "unspecified|self|task|variants|project|derived|unspecified");
    EXPECT_EQ(names(plotFormatName, 5), "png|svg|pdf|dumb|cdxml|png");
    EXPECT_EQ(names(plotStyleName, 4), "lines|linepoints|points|boxes|lines");
    EXPECT_EQ(names(plotThemeName, 6), "auto|scientific|report|matrix|minimal|level|auto");
    EXPECT_EQ(names(axisScaleName, 2), "linear|log10|linear");
    EXPECT_EQ(names(legendPositionName, 7),
              "auto|top right|top left|bottom right|bottom left|outside right|bottom|auto");
    EXPECT_EQ(names(missingPolicyName, 3), "error|skip|nan|error");
    EXPECT_EQ(names(spectrumModeName, 4), "sticks|broadened|sticks+broadened|sampled|sticks");
    EXPECT_EQ(names(broadenFunctionName, 2), "none|gaussian|none");
    EXPECT_EQ(names(spinSelectionName, 4), "auto|alpha|beta|both|auto");
    EXPECT_EQ(names(arrowStyleName, 2), "solid|dashed|solid");
    EXPECT_EQ(names(arrowTargetName, 3), "explicit|first lower|first higher|explicit");
    EXPECT_EQ(names(plotAxisName, 2), "y|y2|y");
}

/// The value of each of the words, which are separated by "|"; -1 for an unknown word. Case does not matter.
template <class E>
std::vector<int> values(std::optional<E> (*parse)(std::string_view), std::string_view words) {
    std::vector<int> result;
    for (const auto& word : splitOn(words, '|')) {
        const auto value = parse(word);
        auto mixed = word;
        if (!mixed.empty() && isLetter(mixed[0])) {
            mixed[0] = static_cast<char>(mixed[0] - 'a' + 'A');
        }
        EXPECT_EQ(parse(mixed), value) << mixed;
        result.push_back(value ? static_cast<int>(*value) : -1);
    }
    return result;
}

using ::testing::ElementsAre;

TEST(PlotEnumerations, WordsAndAliases) {
    EXPECT_THAT(values(parsePlotKind,
                       "barrier|convergence|curve|spectrum|scatter|correlation|heatmap|matrixmap|"
                       "histogram|hist|bar|barchart|errorbar|errorbars|pie||bar "),
                ElementsAre(0, 1, 2, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, -1, -1, -1));
    EXPECT_THAT(
        values(parsePlotKind, "frontier|fmo|orbital-level|orbital_levels|orbitallevels|orbital-levels"),
        ElementsAre(9, 9, 9, 9, 9, -1));
    EXPECT_THAT(values(parsePlotKind,
                       "excited|excited-state|excited_state|excited-level|excited_levels|excitedlevels|"
                       "eslevel|eslevels|excited_level"),
                ElementsAre(10, 10, 10, 10, 10, 10, 10, 10, -1));
    EXPECT_THAT(values(parsePlotFormat, "png|svg|pdf|dumb|cdxml|chemdraw|jpg|"),
                ElementsAre(0, 1, 2, 3, 4, 4, -1, -1));
    EXPECT_THAT(values(parsePlotStyle, "lines|line|linepoints|linespoints|points|boxes|bars|point"),
                ElementsAre(0, 0, 1, 1, 2, 3, 3, -1));
    EXPECT_THAT(values(parsePlotTheme,
                       "auto|default|scientific|classic|sci|report|dashboard|matrix|heatmap|minimal|"
                       "clean|level|levels|dark"),
                ElementsAre(0, 0, 1, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, -1));
    EXPECT_THAT(values(parseAxisScale, "linear|log10|log|ln"), ElementsAre(0, 1, 1, -1));
    EXPECT_THAT(values(parseLegendPosition,
                       "auto|top right|right top|top left|left top|bottom right|right bottom|"
                       "bottom left|left bottom|outside right|right outside|bottom|outside "
                       "bottom|bottom outside|top"),
                ElementsAre(0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, -1, -1));
    EXPECT_THAT(values(parseMissingPolicy, "error|skip|nan|drop"), ElementsAre(0, 1, 2, -1));
    EXPECT_THAT(values(parseSpectrumMode,
                       "sticks|stick|broadened|smooth|gaussian|sticks+broadened|stick+broadened|"
                       "both|overlay|sampled|native|grid|none"),
                ElementsAre(0, 0, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, -1));
    EXPECT_THAT(values(parseSpinSelection, "auto|alpha|a|beta|b|both|all|c"),
                ElementsAre(0, 1, 1, 2, 2, 3, 3, -1));
    EXPECT_THAT(values(parseArrowStyle, "solid|line|dash|dashed|dotted|bold"),
                ElementsAre(0, 0, 1, 1, 1, -1));
    EXPECT_THAT(values(parseArrowTarget, "lower|below|higher|above|explicit"), ElementsAre(1, 1, 2, 2, -1));
    EXPECT_THAT(values(parsePlotAxis, "y|left|y2|right|x"), ElementsAre(0, 0, 1, 1, -1));
}

TEST(PlotEnumerations, SourcesAndTheirAlias) {
    EXPECT_THAT(values(parsePlotSource, "self|task|variants|matrix|project|derived"),
                ElementsAre(1, 2, 3, 3, 4, 5));
    EXPECT_THAT(values(parsePlotSource, "unspecified|tasks|"), ElementsAre(-1, -1, -1));
}

TEST(PlotEnumerations, RelativeModesAndMultiplicities) {
    EXPECT_THAT(values(parseRelativeMode, "none|to|first|minimum|min|max|"),
                ElementsAre(0, 1, 2, 3, 3, -1, -1));
    EXPECT_THAT(values(parseMultiplicityWord, "singlet|s|doublet|d|triplet|t|quartet|q|quintet|3|"),
                ElementsAre(1, 1, 2, 2, 3, 3, 4, 4, -1, -1, -1));
    EXPECT_EQ(multiplicityText(1), "singlet");
    EXPECT_EQ(multiplicityText(4), "quartet");
    EXPECT_EQ(multiplicityText(5), "5");
}

} // namespace
} // namespace morquill::taskdsl::plot
