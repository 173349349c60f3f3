// What a formula or profile call becomes, and what that costs. Definitions are the matter of
// formulas_test.cpp.

#include "fixtures/derive_fixture.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

/// Definitions, some of which use each other: a formula is looked up where it is called.
DeriveSurface surface() {
    DeriveSurface result;
    parseFormula("rel(x, y) = (x - y) * 627.5", {}, result);
    parseFormula("twice(x) = x + x", {}, result);
    parseFormula("four(x) = twice(twice(x))", {}, result);
    parseFormula("ping(x) = pong(x)", {}, result);
    parseFormula("pong(x) = 1 + ping(x)", {}, result);
    parseProfile("std for thermo = (temperature=298.15, model=m)", {}, result);
    parseProfile("ref for rel = (y=ref_energy)", {}, result);
    return result;
}

ExprRef expandIn(DeriveSurface& definitions, std::string_view text) {
    return expandFormulas(plot::parsePlotExpression(text, {}), definitions, statementPlace);
}

TEST(Expansion, ResolvesEveryCall) {
    const std::pair<const char*, const char*> rows[] = {
        {"rel(a, b)", "(a - b) * 627.5"},
        {"rel(y=a, x=b)", "(b - a) * 627.5"},
        {"rel(a - b, c - d) / 2", "(a - b - (c - d)) * 627.5 / 2"},
        {"-twice(a)", "-(a + a)"},
        {"four(a)", "a + a + a + a"},
        {"f(twice(1), z=twice(2))", "f(1 + 1, z=2 + 2)"},
        {"thermo(opt, using=std)", "thermo(opt, temperature=298.15, model=m)"},
        {"rel(a, using=ref)", "(a - ref_energy) * 627.5"},
        {"Twice(a) + twice", "Twice(a) + twice"}, // another case, and a name that is no call
    };
    for (const auto& [text, expected] : rows) {
        DeriveSurface definitions = surface();
        EXPECT_EQ(printed(expandIn(definitions, text)), expected) << text;
    }
}

TEST(Expansion, FaultsHaveThePlaceOfTheStatement) {
    const std::pair<const char*, const char*> rows[] = {
        {"rel(a)", "formula 'rel' requires argument 'y'"},
        {"rel(a, b, c)", "formula 'rel' received too many arguments"},
        {"rel(a, z=b)", "formula 'rel' has no parameter 'z'"},
        {"rel(x=a, x=b)", "formula argument 'x' is specified more than once"},
        {"rel(a, x=b)", "argument 'x' is specified by both another argument and the function call"},
        {"rel(x=a, b)", "positional arguments must precede using= and other named arguments"},
        {"rel(a, b, using=ref)",
         "argument 'y' is specified by both the parameter profile and the function call"},
        {"thermo(using=std, using=std)", "a function call may use only one parameter profile"},
        {"thermo(using=none)", "unknown parameter profile 'none'"},
        {"2 * ping(a)", "recursive formula expansion is not allowed: ping -> pong -> ping"},
    };
    for (const auto& [text, message] : rows) {
        DeriveSurface definitions = surface();
        EXPECT_EQ(messageOf([&, written = text] { (void)expandIn(definitions, written); }),
                  atStatement(message))
            << text;
    }
}

TEST(Expansion, CountsWhatItAddsAndWhatItWentThrough) {
    DeriveSurface definitions = surface();
    (void)expandIn(definitions, "a * b + c"); // written out in full
    EXPECT_EQ(definitions.expandedNodes, 0U);
    EXPECT_EQ(definitions.visitedNodes, 0U);
    // `twice(a)` is written with two nodes and becomes three, from a body of three.
    (void)expandIn(definitions, "twice(a)");
    EXPECT_EQ(definitions.expandedNodes, 1U);
    EXPECT_EQ(definitions.visitedNodes, 3U);
    (void)expandIn(definitions, "twice(a)");
    EXPECT_EQ(definitions.expandedNodes, 2U);
    EXPECT_EQ(definitions.visitedNodes, 6U);
}

TEST(Expansion, SharesThePartsThatHoldNoCallOfAFormula) {
    DeriveSurface definitions = surface();
    const auto source = plot::parsePlotExpression("twice(a) + max(b, -c)", {});
    const auto result = expandFormulas(source, definitions, statementPlace);
    EXPECT_EQ(plot::expressionAs<plot::BinaryExpr>(result)->right,
              plot::expressionAs<plot::BinaryExpr>(source)->right);
    EXPECT_EQ(printed(source), "twice(a) + max(b, -c)");
}

TEST(ChargeCopy, CountsTheNodesOfOneMoreCopyUpToTheBound) {
    DeriveSurface definitions;
    const auto expression = plot::parsePlotExpression("f(a, -b) * 'x' + {{ t.k }}", {});
    // f, a, -, b, *, 'x', + and the snapshot
    chargeCopy(expression, definitions, statementPlace);
    EXPECT_EQ(definitions.expandedNodes, 8U);
    definitions.expandedNodes = maxExpandedNodes - 8;
    chargeCopy(expression, definitions, statementPlace);
    EXPECT_EQ(messageOf([&] { chargeCopy(plot::parsePlotExpression("a", {}), definitions, statementPlace); }),
              atStatement("derive expansion exceeds the maximum size of 100000 nodes"));
}

} // namespace
} // namespace morquill::taskdsl::derive
