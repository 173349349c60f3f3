#include "taskdsl/plot/series.h"

#include "fixtures/faults.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

const SourceSpan place{"a.mq", 5, 3, 5, 20};

/// Expression, label, unit, then "log", the axis and the style as far as they were written.
std::string shown(const PlotSeries& series) {
    std::string text = renderPlotExpression(series.expression) + "|" + series.label + "|" + series.unit;
    text += series.logScale ? " log" : "";
    text += series.axisDeclared ? " " + std::string(plotAxisName(series.axis)) : "";
    text += series.styleDeclared ? " " + std::string(plotStyleName(series.style)) : "";
    return text;
}

TEST(ParseSeriesStatement, ReadsAnExpressionAndItsModifiers) {
    const std::pair<const char*, const char*> rows[] = {
        {"energy", "energy||"},
        {"e - min(e) label 'E rel' unit kJ/mol", "e - min(e)|E rel|kJ/mol"},
        {"e UNIT eV Label Energy of state", "e|Energy of state|eV"},
        {"e log", "e|| log"},
        {"e log true", "e|| log"},
        {"e log off", "e||"},
        {"e log FALSE", "e||"},
        {"e log linear", "e||"},
        {"e scale log10", "e|| log"},
        {"e scale linear", "e||"},
        {"e axis right style points", "e|| y2 points"},
        {"e axis left", "e|| y"},
        {"f('label x') label y", "f(\"label x\")|y|"}, // a keyword in quotes is text
        {"f(label=1)", "f(label=1)||"},                // and in parentheses a name
        {"e label a label b", "e|b|"},
    };
    for (const auto& [text, expected] : rows) {
        const auto series = parseSeriesStatement("y", text, place);
        EXPECT_EQ(shown(series), expected) << text;
        EXPECT_EQ(series.span, place);
        EXPECT_EQ(series.id, "");
    }
}

TEST(ParseSeriesStatement, FaultsNameTheStatementAndItsPlace) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "yerr statement requires an expression"},
        {"label x", "yerr statement requires an expression"},
        {"e label", "label requires text"},
        {"e unit", "unit option requires a value"},
        {"e axis", "axis option requires y or y2"},
        {"e axis z", "unsupported axis 'z'"},
        {"e scale", "series scale requires linear or log10"},
        {"e scale ln", "series scale requires linear or log10"},
        {"e style", "style requires a value"},
        {"e style Dots", "unsupported plot style 'dots'"},
        {"e +", "expected a number, identifier, string, function call, or '('"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([written = text] { (void)parseSeriesStatement("yerr", written, place); }),
                  "a.mq:5:3-5:20: error: " + std::string(message))
            << text;
    }
}

TEST(ApplySeriesModifier, ChangesTheFieldThatItsWordNames) {
    PlotSeries series;
    for (const auto& [word, value] : {std::pair{"label", "'E'"},
                                      {"unit", "eV"},
                                      {"scale", "log10"},
                                      {"axis", "y2"},
                                      {"style", "boxes"}}) {
        applySeriesModifier(series, word, value, place);
    }
    EXPECT_EQ(shown(series), "|E|eV log y2 boxes");
    EXPECT_EQ(bareMessageOf([&] { applySeriesModifier(series, "colour", "red", place); }),
              "unsupported series modifier 'colour'");
}

TEST(ReadStyleValue, TakesTheFirstWord) {
    EXPECT_EQ(readStyleValue("Lines and more", place), PlotStyle::lines);
    EXPECT_EQ(readStyleValue("boxes", place), PlotStyle::boxes);
    EXPECT_EQ(bareMessageOf([] { (void)readStyleValue("  ", place); }), "style requires a value");
}

} // namespace
} // namespace morquill::taskdsl::plot
