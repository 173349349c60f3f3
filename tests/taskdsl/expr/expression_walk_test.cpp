#include "taskdsl/expr/expression_walk.h"

#include <gtest/gtest.h>

#include <string>

namespace morquill::taskdsl::plot {
namespace {

ExprRef walked(std::string_view text) {
    return parsePlotExpression(text, {});
}

/// The printed form of a node with nothing below it, the operator of any other one.
std::string headOf(const PlotExpression& node) {
    if (const auto* call = std::get_if<CallExpr>(&node.node)) {
        return call->name + "()";
    }
    if (std::holds_alternative<UnaryExpr>(node.node)) {
        return "sign";
    }
    if (const auto* binary = std::get_if<BinaryExpr>(&node.node)) {
        return binary->op == BinaryOp::add ? "+" : "*";
    }
    return renderPlotExpression(makeExpression(node.node));
}

TEST(ExpressionWalk, VisitsANodeBeforeThoseBelowItFromLeftToRight) {
    std::string heads;
    forEachNode(walked("f(a, x=b * 2) + -c + 'd'"),
                [&](const PlotExpression& node) { heads += headOf(node) + " "; });
    EXPECT_EQ(heads, "+ + f() a * b 2 sign c \"d\" ");
}

TEST(ExpressionWalk, PassesOverArgumentsThatAreNotTaken) {
    std::string heads;
    forEachNode(
        walked("f(a, x=g(b), y=h(x=c, d))"), [&](const PlotExpression& node) { heads += headOf(node) + " "; },
        [](const PlotCallArgument& argument) { return argument.name != "x"; });
    EXPECT_EQ(heads, "f() a h() d ");
}

TEST(ExpressionWalk, AnEmptyReferenceHasNoNodes) {
    int nodes = 0;
    const auto count = [&](const PlotExpression&) { ++nodes; };
    forEachNode(nullptr, count);
    EXPECT_EQ(nodes, 0);
    forEachNode(makeExpression(UnaryExpr{UnaryOp::minus, nullptr}), count);
    EXPECT_EQ(nodes, 1);
}

TEST(ExpressionWalk, GoesThroughLongAndDeepTreesWithoutRecursion) {
    ExprRef left = makeExpression(IdentifierExpr{"a"});
    ExprRef right = left;
    constexpr std::size_t levels = 200'000;
    for (std::size_t i = 0; i < levels; ++i) {
        left = makeExpression(BinaryExpr{BinaryOp::add, left, makeExpression(NumberExpr{1})});
        right = makeExpression(CallExpr{"f", {{"", false, right}}});
    }
    std::size_t nodes = 0;
    const auto count = [&](const PlotExpression&) { ++nodes; };
    forEachNode(left, count);
    EXPECT_EQ(nodes, 2 * levels + 1);
    nodes = 0;
    forEachNode(right, count);
    EXPECT_EQ(nodes, levels + 1);
}

TEST(ExpressionWalk, FindsACallAnywhere) {
    EXPECT_TRUE(callsFunction(walked("f()")));
    EXPECT_TRUE(callsFunction(walked("a + -(b * f(c))")));
    EXPECT_FALSE(callsFunction(walked("a + -(b * {{ f.g }}) / 'f()'")));
    EXPECT_FALSE(callsFunction(nullptr));
}

} // namespace
} // namespace morquill::taskdsl::plot
