#include "taskdsl/derive/condition_output.h"

#include "taskdsl/derive/condition.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morquill::taskdsl::derive {
namespace {

/// The condition in print, with the losses after it.
std::string printedLine(std::string_view text, std::string_view keyword, ElseWord elseWord) {
    DeriveSurface surface;
    const auto condition = parseDeriveCondition(text, surface, {});
    std::string losses;
    const WarningSink sink = [&losses](const std::string& line) { losses += " | " + line; };
    ReadBackCheck check("d", sink);
    const std::string line = printCondition(condition, keyword, elseWord, check);
    check.warn();
    return line + losses;
}

TEST(ConditionOutput, ElseIsAWordOfRequireAlone) {
    EXPECT_EQ(printedLine("(else)", "require", ElseWord::ends), "(else)");
    EXPECT_EQ(printedLine("else", "where", ElseWord::ordinary), "else");
    EXPECT_EQ(printedLine("energy < 0 and done", "require", ElseWord::ends), "energy < 0 and done");
}

TEST(ConditionOutput, WhatPrintsWithoutItsParenthesesIsReported) {
    EXPECT_EQ(printedLine("not (a or b)", "where", ElseWord::ordinary),
              "not a or b | derive 'd' does not read back: 'not' before a group prints without parentheses");
    EXPECT_EQ(printedLine("(a or b) and c", "where", ElseWord::ordinary), "(a or b) and c");
}

} // namespace
} // namespace morquill::taskdsl::derive
