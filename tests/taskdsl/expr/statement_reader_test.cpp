#include "taskdsl/expr/statement_reader.h"

#include "fixtures/faults.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

std::vector<SourceLine> linesOf(std::string_view text, std::uint32_t first = 2) {
    std::vector<SourceLine> lines;
    for (const auto line : splitLines(text)) {
        lines.push_back({std::string(line), "a.mq", first++});
    }
    return lines;
}

/// Every statement as `<span> <indent> <text>`.
std::string shown(std::string_view text) {
    std::string result;
    for (const auto& statement : readPlotStatements(linesOf(text))) {
        result +=
            formatSpan(statement.span) + " " + std::to_string(statement.indent) + " " + statement.text + "\n";
    }
    return result;
}

std::string statementFault(std::string_view text, std::string_view language = "plot") {
    return messageOf<DiagnosticError>([&] { (void)readPlotStatements(linesOf(text), language); });
}

TEST(PlotStatements, OnePerLineWithItsPlace) {
    EXPECT_EQ(shown("  x a\n\n  # note\n\ty b # tail\n"), "a.mq:2:3-2:5 2 x a\n"
                                                          "a.mq:5:5-5:11 4 y b\n");
}

TEST(PlotStatements, ATabCountsAsFourColumnsWithoutTabStops) {
    EXPECT_EQ(shown(" \t x"), "a.mq:2:7-2:4 6 x\n");
}

TEST(PlotStatements, OperatorsAtTheEndContinue) {
    EXPECT_EQ(shown("x a +\n# note\n\n  b\ny c"), "a.mq:2:1-5:3 0 x a + b\n"
                                                  "a.mq:6:1-6:3 0 y c\n");
    for (const char c : std::string_view("*+,-/")) {
        EXPECT_EQ(shown("label a" + std::string(1, c) + "\nb"),
                  "a.mq:2:1-3:1 0 label a" + std::string(1, c) + " b\n");
    }
    EXPECT_EQ(shown("label \"a,\"\nb"), "a.mq:2:1-2:10 0 label \"a,\"\na.mq:3:1 0 b\n");
}

TEST(PlotStatements, OpenParenthesesContinueOutsideQuotesAndSnapshots) {
    EXPECT_EQ(shown("x f(a\n  )\ny b"), "a.mq:2:1-3:3 0 x f(a )\na.mq:4:1-4:3 0 y b\n");
    EXPECT_EQ(shown("x \"(\"\ny '('\nz {{ a.( }}"), "a.mq:2:1-2:5 0 x \"(\"\n"
                                                    "a.mq:3:1-3:5 0 y '('\n"
                                                    "a.mq:4:1-4:11 0 z {{ a.( }}\n");
    EXPECT_EQ(shown("x ((a\n)\n)"), "a.mq:2:1-4:1 0 x ((a ) )\n");
}

TEST(PlotStatements, SingleBracesAreOrdinary) {
    EXPECT_EQ(shown("label a } {"), "a.mq:2:1-2:11 0 label a } {\n");
    EXPECT_EQ(shown("label a \\"), "a.mq:2:1-2:9 0 label a \\\n");
}

TEST(PlotStatements, ABackslashEscapesInsideStringsOnly) {
    EXPECT_EQ(shown(R"(label "a\"(")"), "a.mq:2:1-2:12 0 label \"a\\\"(\"\n");
    EXPECT_EQ(shown("x \\(a\n)"), "a.mq:2:1-3:1 0 x \\(a )\n");
}

TEST(PlotStatements, NothingInNothingOut) {
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown("\n  \n# a\n"), "");
}

TEST(PlotStatements, EveryFaultWithItsSpan) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows{
        {"x a }} b", "a.mq:2:1-2:8: error: unexpected '}}' in plot statement"},
        {" label \"a",
         "a.mq:2:2-2:9: error: unterminated string literal; strings cannot span physical lines"},
        {"label it's",
         "a.mq:2:1-2:10: error: unterminated string literal; strings cannot span physical lines"},
        // The backslash closes the single-quoted string for the comment, but not for the statement.
        {R"(label 'a\')",
         "a.mq:2:1-2:10: error: unterminated string literal; strings cannot span physical lines"},
        {"x {{ a.b",
         "a.mq:2:1-2:8: error: unterminated '{{ ... }}' snapshot reference; snapshots cannot span "
         "physical lines"},
        {"x a\ny b)", "a.mq:3:1-3:4: error: unmatched ')' in plot statement"},
        {"x (a\n))", "a.mq:2:1-3:2: error: unmatched ')' in plot statement"},
        {"x a\n y b +\n# end", "a.mq:3:2-3:6: error: plot statement ends with a continuation operator"},
        {"x f(\n a,", "a.mq:2:1-3:3: error: unterminated parenthesized plot statement"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(statementFault(text), expected) << text;
    }
}

TEST(PlotStatements, TheLanguageNamesItselfInFourMessages) {
    EXPECT_EQ(statementFault("}}", "@derive"), "a.mq:2:1-2:2: error: unexpected '}}' in @derive statement");
    EXPECT_EQ(statementFault(")", "@derive"), "a.mq:2:1: error: unmatched ')' in @derive statement");
    EXPECT_EQ(statementFault("(", "@derive"),
              "a.mq:2:1: error: unterminated parenthesized @derive statement");
    EXPECT_EQ(statementFault("let a = -", "@derive"),
              "a.mq:2:1-2:9: error: @derive statement ends with a continuation operator");
}

TEST(PlotStatements, ParenthesesBalanceByTheLineNotByTheByte) {
    EXPECT_EQ(shown("x )("), "a.mq:2:1-2:4 0 x )(\n");
}

TEST(PlotStatements, AHundredThousandContinuedLinesAreOneStatement) {
    const std::string body = [] {
        std::string text;
        for (int i = 0; i < 100000; ++i) {
            text += "a +\n";
        }
        return text + "a";
    }();
    const auto statements = readPlotStatements(linesOf(body));
    ASSERT_EQ(statements.size(), 1U);
    EXPECT_EQ(statements.front().text.size(), 4U * 100000 + 1);
}

} // namespace
} // namespace morquill::taskdsl::plot
