#include "taskdsl/expr/plot_text.h"

#include "fixtures/awkward_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace morquill::taskdsl::plot {
namespace {

using ::testing::ElementsAre;

TEST(PlotComment, EndsAtAHashOutsideQuotesAndSnapshots) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows{
        {"", ""},
        {"  # all", ""},
        {" a # b", "a"},
        {"a#b", "a"}, // no white space is needed before it
        {"label \"# in\" # out", "label \"# in\""},
        {"label '# in' # out", "label '# in'"},
        {"x {{ a.b#c }} # out", "x {{ a.b#c }}"},
        {"x }} # out", "x }}"},
        {R"(label "a\"# in" # out)", R"(label "a\"# in")"},
        {R"(label 'a\' # out)", R"(label 'a\')"}, // single quotes know no escapes
        {R"(a \# b # c)", R"(a \# b)"},           // a backslash protects outside quotes too
        {R"(a \)", R"(a \)"},
        {"a {", "a {"},
        {"label \"open # b", "label \"open # b"},
        {"label \"it's\" # b", "label \"it's\""},
    };
    for (const auto& [line, expected] : rows) {
        EXPECT_EQ(stripPlotComment(line), expected) << line;
    }
}

TEST(PlotWords, SplitAtWhiteSpaceOutsideQuotesAndParentheses) {
    EXPECT_THAT(splitPlotWords("  a\tb  c "), ElementsAre("a", "b", "c"));
    EXPECT_THAT(splitPlotWords(R"(label "a b" 'c d')"), ElementsAre("label", R"("a b")", "'c d'"));
    EXPECT_THAT(splitPlotWords(R"("a\" b" c)"), ElementsAre(R"("a\" b")", "c"));
    EXPECT_THAT(splitPlotWords(R"('a\' b)"), ElementsAre(R"('a\')", "b"));
    EXPECT_THAT(splitPlotWords("f(a, b) c"), ElementsAre("f(a, b)", "c"));
    EXPECT_THAT(splitPlotWords("a) b"), ElementsAre("a)", "b"));
    EXPECT_THAT(splitPlotWords("f(a b"), ElementsAre("f(a b"));
    EXPECT_THAT(splitPlotWords("\"a b"), ElementsAre("\"a b"));
    EXPECT_THAT(splitPlotWords("\"a\\"), ElementsAre("\"a\\"));
    EXPECT_THAT(splitPlotWords(" \t\f\v"), ElementsAre());
}

TEST(PlotWords, FirstWordAndRest) {
    const auto [word, rest] = splitFirstWord(" title  \"a b\" c ");
    EXPECT_EQ(word, "title");
    EXPECT_EQ(rest, "\"a b\" c");
    EXPECT_EQ(splitFirstWord("").word, "");
    EXPECT_EQ(splitFirstWord("derived(a, b) c").word, "derived(a, b)");
}

TEST(PlotOptions, SplitAtKeywordsAtAWordStartAtLevelZero) {
    const auto split = [](std::string_view text) {
        std::string shown;
        const auto options = splitKeywordOptions(text, {"label", "axis", "log"});
        shown += "[" + std::string(options.head) + "]";
        for (const auto& [keyword, value] : options.options) {
            shown += std::string(keyword) + "[" + std::string(value) + "]";
        }
        return shown;
    };
    EXPECT_EQ(split(""), "[]");
    EXPECT_EQ(split(" energy "), "[energy]");
    EXPECT_EQ(split("energy label \"a b\" axis y2 log"), "[energy]label[\"a b\"]axis[y2]log[]");
    EXPECT_EQ(split("label a LABEL b"), "[]label[a]label[b]");
    EXPECT_EQ(split("f(a, label b) axis y"), "[f(a, label b)]axis[y]");
    EXPECT_EQ(split("\"a label b\" 'c axis d'"), "[\"a label b\" 'c axis d']");
    EXPECT_EQ(split("{{ a.b label c }} axis y"), "[{{ a.b label c }}]axis[y]");
    EXPECT_EQ(split("a.label b"), "[a.label b]");
    EXPECT_EQ(split("labels b"), "[labels b]");
    EXPECT_EQ(split("log(a)"), "[]log[(a)]");
    EXPECT_EQ(split("a axis=y"), "[a]axis[=y]");
    EXPECT_EQ(split(") label b"), "[)]label[b]");
    EXPECT_EQ(split("(a label b"), "[(a label b]");
}

TEST(PlotText, FindsACharacterAtLevelZero) {
    EXPECT_EQ(findAtLevelZero("a = b", '='), 2U);
    EXPECT_EQ(findAtLevelZero("f(x=1) = 2", '='), 7U);
    EXPECT_EQ(findAtLevelZero("\"=\" '=' {{ a.b=c }}", '='), std::string_view::npos);
    EXPECT_EQ(findAtLevelZero(R"(\= =)", '='), 3U);
}

TEST(PlotText, UnquotingTakesOneLevelAndDecodesDoubleQuotes) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows{
        {" a b ", "a b"},
        {"", ""},
        {"\"", "\""},
        {"\"\"", ""},
        {"''", ""},
        {"\"a b\"", "a b"},
        {"'a b'", "a b"},
        {"'a\"", "'a\""},
        {R"("a\nb\tc\rd\\e\"f\'g\h")", "a\nb\tc\rd\\e\"f'gh"},
        {R"('a\nb')", R"(a\nb)"},
        {R"("a\")", R"(a\)"},
        {R"("a" b "c")", R"(a" b "c)"},
        {R"("'a'")", "'a'"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(unquotePlotText(text), expected) << text;
    }
}

TEST(PlotText, QuotingEscapesWhatUnquotingDecodes) {
    EXPECT_EQ(quotePlotText(""), "\"\"");
    EXPECT_EQ(quotePlotText("a\\b\"c\nd\re\tf'g"), R"("a\\b\"c\nd\re\tf'g")");
    EXPECT_EQ(quotePlotText("\xC3\xA9\x01"), "\"\xC3\xA9\x01\"");
    EXPECT_EQ(unquotePlotText(quotePlotText("a\\nb\\\"\n\t\r'")), "a\\nb\\\"\n\t\r'");
}

TEST(PlotText, WhatIsQuotedReadsBack) {
    for (const auto& text : awkwardTexts()) {
        EXPECT_EQ(unquotePlotText(quotePlotText(text)), text) << text;
        const auto statement = "a " + quotePlotText(text) + " b # " + text;
        EXPECT_THAT(splitPlotWords(stripPlotComment(statement)), ElementsAre("a", quotePlotText(text), "b"));
    }
}

TEST(PlotText, TrailingColon) {
    EXPECT_EQ(stripTrailingColon(" a : "), "a");
    EXPECT_EQ(stripTrailingColon(":"), "");
    EXPECT_EQ(stripTrailingColon(" a "), std::nullopt);
}

TEST(PlotText, Identifiers) {
    for (const std::string_view text : {"a", "_", "a1_b", "Z9"}) {
        EXPECT_TRUE(isPlotIdentifier(text)) << text;
    }
    for (const std::string_view text : {"", "1a", "a-b", "a.b", " a", "\xC3\xA9"}) {
        EXPECT_FALSE(isPlotIdentifier(text)) << text;
    }
}

TEST(PlotText, Numbers) {
    EXPECT_EQ(parsePlotNumber(" 1.5e3 "), 1500.0);
    EXPECT_EQ(parsePlotNumber("-2"), -2.0);
    EXPECT_EQ(parsePlotNumber("0x10"), 16.0);
    for (const std::string_view text : {"", " ", "1.5 eV", "one", "1,5"}) {
        EXPECT_FALSE(parsePlotNumber(text).has_value()) << text;
    }
}

TEST(PlotText, NumbersPrintWithFifteenDigits) {
    struct Row {
        double value;
        std::string_view text;
        bool readsBack;
    };
    const std::vector<Row> rows{
        {0, "0", true},
        {-0.1, "-0.1", true},
        {123456789012345, "123456789012345", true},
        {1e20, "1e+20", true},
        {1234567890123456, "1.23456789012346e+15", false},
        {627.509474063112345, "627.509474063112", false},
        {1.7976931348623157e308, "1.7976931348623157e+308", true}, // 15 digits would be infinity
        {HUGE_VAL, "inf", true},
    };
    for (const auto& [value, text, same] : rows) {
        EXPECT_EQ(plotNumberText(value), text);
        EXPECT_EQ(printPlotNumber(value).readsBack, same) << text;
    }
}

TEST(PlotText, OptionWordsAndOperators) {
    EXPECT_TRUE(isPlotOptionWord("Unit"));
    EXPECT_TRUE(isPlotOptionWord("multiplicity"));
    EXPECT_FALSE(isPlotOptionWord("units"));
    EXPECT_FALSE(isPlotOptionWord(""));
    for (const auto* line : {"a +", "a,", "a -", "a *", "a /"}) {
        EXPECT_TRUE(endsInOperator(line)) << line;
    }
    for (const auto* line : {"a", "a =", "(", "a ^", "a:"}) {
        EXPECT_FALSE(endsInOperator(line)) << line;
    }
}

} // namespace
} // namespace morquill::taskdsl::plot
