#include "taskdsl/expr/precedence.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

ExprRef parsed(std::string_view text) {
    return parsePlotExpression(text, {});
}

TEST(Precedence, OfEveryKindOfNode) {
    const auto of = [](std::string_view text) { return precedenceOf(parsed(text)->node); };
    EXPECT_EQ(of("a + b"), Precedence::sums);
    EXPECT_EQ(of("a - b"), Precedence::sums);
    EXPECT_EQ(of("a * b"), Precedence::products);
    EXPECT_EQ(of("a / b"), Precedence::products);
    EXPECT_EQ(of("-a"), Precedence::signs);
    for (const std::string_view text : {"a", "1", "'a'", "{{ a.b }}", "f(a + b)", "(a)"}) {
        EXPECT_EQ(of(text), Precedence::primaries) << text;
    }
}

TEST(Precedence, TheRightSideOfADifferenceOrQuotientAsksForMore) {
    EXPECT_EQ(rightPrecedence(BinaryOp::add), Precedence::sums);
    EXPECT_EQ(rightPrecedence(BinaryOp::subtract), Precedence::products);
    EXPECT_EQ(rightPrecedence(BinaryOp::multiply), Precedence::products);
    EXPECT_EQ(rightPrecedence(BinaryOp::divide), Precedence::signs);
}

TEST(Precedence, ANodeBelowWhatIsAskedNeedsParentheses) {
    EXPECT_TRUE(needsParentheses(*parsed("a + b"), Precedence::products));
    EXPECT_FALSE(needsParentheses(*parsed("a + b"), Precedence::sums));
    EXPECT_TRUE(needsParentheses(*parsed("a * b"), Precedence::signs));
    EXPECT_FALSE(needsParentheses(*parsed("-a"), Precedence::signs));
}

TEST(Precedence, ARightSideOfTheSamePrecedenceRegroups) {
    const auto regroupsIn = [](std::string_view text) {
        const auto expression = parsed(text);
        return regroups(*expressionAs<BinaryExpr>(expression));
    };
    EXPECT_TRUE(regroupsIn("a + (b - c)"));
    EXPECT_TRUE(regroupsIn("a * (b / c)"));
    EXPECT_FALSE(regroupsIn("a - (b - c)"));
    EXPECT_FALSE(regroupsIn("a / (b * c)"));
    EXPECT_FALSE(regroupsIn("a + b * c"));
    EXPECT_FALSE(regroupsIn("a * (b + c)"));
    EXPECT_FALSE(regroupsIn("a + b - c"));
}

} // namespace
} // namespace morquill::taskdsl::plot
