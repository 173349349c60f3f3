#include "taskdsl/derive/condition.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_output.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::derive {
namespace {

DeriveCondition parse(std::string_view text) {
    DeriveSurface surface;
    return parseDeriveCondition(text, surface, {});
}

std::string conditionFault(std::string_view text) {
    try {
        (void)parse(text);
    } catch (const DiagnosticError& error) {
        return error.message();
    }
    return "(accepted)";
}

/// The tree with every node in brackets: `[or a [and b c]]`.
std::string treeOf(const DeriveCondition& condition) {
    std::string tree;
    if (condition.kind != DeriveConditionKind::leaf) {
        tree = "[" + std::string(deriveConditionKindName(condition.kind));
        for (const auto& child : condition.children) {
            tree += " " + treeOf(child);
        }
        return tree + "]";
    }
    return renderDeriveCondition(condition);
}

TEST(Condition, OrBindsWeakerThanAndAndChainsLeanToTheRight) {
    const std::pair<const char*, const char*> rows[] = {
        {"a or b or c", "[or a [or b c]]"},
        {"a and b and c", "[and a [and b c]]"},
        {"a or b and c or d", "[or a [or [and b c] d]]"},
        {"(a or b) and c", "[and [or a b] c]"},
        {"(a == 1) or (b == 2)", "[or a == 1 b == 2]"},
        {"((a or b))", "[or a b]"},
        {"(a or b) or c", "[or [or a b] c]"},
        {"A Or B AND c", "[or A [and B c]]"},
        {"a or(b)and c", "[or a [and b c]]"},
        {"\"a or b\"or c", "[or \"a or b\" c]"},
        {"{{ t.a or b }} or c", "[or {{ t.a or b }} c]"},
        {"f(a, 'x') or order or for.or or or_", "[or f(a, \"x\") [or order [or for.or or_]]]"},
    };
    for (const auto& [text, tree] : rows) {
        EXPECT_EQ(treeOf(parse(text)), tree) << text;
    }
}

TEST(Condition, NotTakesWhatFollowsUpToAndOrOr) {
    const std::pair<const char*, const char*> rows[] = {
        {"not a", "[not a]"},
        {"NOT a == 1", "[not a == 1]"},
        {"not a and b", "[and [not a] b]"},
        {"not (a and b)", "[not [and a b]]"},
        {"not not a", "[not [not a]]"},
        {"not (not (a or b)) or c", "[or [not [not [or a b]]] c]"},
        {"not", "not"},
        {"not(a)", "not(a)"},
        {"nota", "nota"},
    };
    for (const auto& [text, tree] : rows) {
        EXPECT_EQ(treeOf(parse(text)), tree) << text;
    }
}

TEST(Condition, ComparesAtTheFirstOperator) {
    const std::pair<const char*, DeriveCompareOp> rows[] = {
        {"a + 1 == b", DeriveCompareOp::equal},
        {"a!=b", DeriveCompareOp::notEqual},
        {"a<b", DeriveCompareOp::less},
        {"a <= b", DeriveCompareOp::lessEqual},
        {"a>b", DeriveCompareOp::greater},
        {"a >= b", DeriveCompareOp::greaterEqual},
        {"a MATCHES 'x*'", DeriveCompareOp::matches},
        {"a in [b]", DeriveCompareOp::in},
        {"f(a, b=1)", DeriveCompareOp::truthy},
        {"inner", DeriveCompareOp::truthy},
        {"{{ t.a == b }}", DeriveCompareOp::truthy},
        {"'a < b' == c", DeriveCompareOp::equal},
    };
    for (const auto& [text, op] : rows) {
        const auto condition = parse(text);
        EXPECT_EQ(condition.kind, DeriveConditionKind::leaf) << text;
        EXPECT_EQ(condition.op, op) << text;
        EXPECT_EQ(condition.right == nullptr, op == DeriveCompareOp::truthy || op == DeriveCompareOp::in)
            << text;
    }
    EXPECT_EQ(plot::renderPlotExpression(parse("a + 1 == b * 2").left), "a + 1");
    EXPECT_EQ(plot::renderPlotExpression(parse("a + 1 == b * 2").right), "b * 2");
}

TEST(Condition, InTakesAListInEitherBracket) {
    EXPECT_EQ(renderDeriveCondition(parse("m in [ 'a', b, 1 ]")), "m in [\"a\", b, 1]");
    EXPECT_EQ(renderDeriveCondition(parse("m IN(a, f(b, c))")), "m in [a, f(b, c)]");
    EXPECT_EQ(renderDeriveCondition(parse("m in [a[1], 'x, y'] and n in (or, and)")),
              "m in [a[1], \"x, y\"] and n in [or, and]");
}

TEST(Condition, PrintsOrUnderAndInParenthesesAndNotAsItStands) {
    const std::pair<const char*, const char*> rows[] = {
        {"(a or b) and (c or d) and e", "(a or b) and (c or d) and e"},
        {"a and (b and (c or d))", "a and b and (c or d)"},
        {"(a and b) or c", "a and b or c"},
        {"(a == 1) or (b == 2)", "a == 1 or b == 2"},
        {"not (a or b)", "not a or b"},
        {"not (a or b) and c", "not a or b and c"},
        {"a matches 'x' and not b", "a matches \"x\" and not b"},
    };
    for (const auto& [text, printed] : rows) {
        EXPECT_EQ(renderDeriveCondition(parse(text)), printed) << text;
        EXPECT_EQ(renderDeriveCondition(parse(printed)), printed) << text;
    }
}

TEST(Condition, FaultsAreNamed) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "condition cannot be empty"},
        {"( )", "condition cannot be empty"},
        {"a or", "condition cannot be empty"},
        {"or a", "condition cannot be empty"},
        {"a and or b", "condition cannot be empty"},
        {"not ()", "condition cannot be empty"},
        {"== a", "condition has an empty left side"},
        {"in [a]", "condition has an empty left side"},
        {"not == a", "condition has an empty left side"},
        {"a <", "comparison has an empty right side"},
        {"a in", "comparison has an empty right side"},
        {"a matches", "comparison has an empty right side"},
        {"a in []", "in condition requires a non-empty list"},
        {"a in ( )", "in condition requires a non-empty list"},
        {"a in b", "in condition requires a non-empty list"},
        {"a in (b), (c)", "in condition requires a non-empty list"},
        {"a in (b]", "in condition requires a non-empty list"},
        {"a in [b,]", "in condition contains an empty value"},
        {"a in [,]", "in condition contains an empty value"},
        {"a in [b,,c]", "in condition contains an empty value"},
        {"a = 1", "unexpected token '='"},
        {"a == b == c", "unexpected token '='"},
        {"(a == 1) == 2", "expected ')' in plot expression"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(conditionFault(text), message) << text;
    }
}

TEST(Condition, ExpressionsAreExpanded) {
    DeriveSurface surface;
    parseFormula("twice(x) = 2 * x", {}, surface);
    EXPECT_EQ(renderDeriveCondition(
                  parseDeriveCondition("twice(a) > 1 and b in [twice(c)] or not twice(d)", surface, {})),
              "2 * a > 1 and b in [2 * c] or not 2 * d");
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

TEST(Condition, NestingIsBounded) {
    const std::string message = "condition is nested too deeply";
    const auto wrapped = [](std::size_t levels) {
        return repeated("(", levels) + "a == b" + repeated(")", levels);
    };
    EXPECT_EQ(conditionFault(wrapped(1000)), "(accepted)");
    EXPECT_EQ(conditionFault(wrapped(1001)), message);
    EXPECT_EQ(conditionFault(wrapped(300'000)), message);
    EXPECT_EQ(conditionFault(repeated("not ", 1000) + "a"), "(accepted)");
    EXPECT_EQ(conditionFault(repeated("not ", 1001) + "a"), message);
    EXPECT_EQ(conditionFault(repeated("not ", 300'000) + "a"), message);
    EXPECT_EQ(conditionFault(repeated("(a or b and ", 1000) + "c" + repeated(")", 1000)), "(accepted)");
    EXPECT_EQ(conditionFault(repeated("(", 1000) + "a" + repeated(" or b) and c", 1000)), "(accepted)");
    EXPECT_EQ(conditionFault(repeated("not (a or ", 500) + "c" + repeated(")", 500)), "(accepted)");
    EXPECT_EQ(conditionFault(repeated("not (a or ", 200'000) + "c" + repeated(")", 200'000)), message);
}

TEST(Condition, ChainsOfAnyLengthAreReadCopiedPrintedAndFreed) {
    for (const std::string word : {" or ", " and ", " or b and "}) {
        const std::string chain = repeated("a" + word, 20'000) + "a == 1";
        const DeriveCondition condition = parse(chain);
        const DeriveCondition copy = condition; // NOLINT: the copy is the point
        EXPECT_EQ(renderDeriveCondition(copy), chain);
        DeriveCondition assigned;
        assigned = copy;
        EXPECT_EQ(renderDeriveCondition(assigned), chain);
    }
}

TEST(Condition, OddBracketsAndBytesAreNoTrouble) {
    for (const std::string& text :
         {std::string("("), std::string(")"), std::string("[ or a"), std::string("a ] or b"),
          std::string("(b] or c)"), std::string("'"), std::string("{{"), std::string("a\0b", 3),
          std::string("\xff or \xfe"), std::string("a in ["), std::string("a in ("),
          std::string("(a in [b)]"), std::string("not")}) {
        (void)conditionFault(text);
    }
    EXPECT_EQ(treeOf(parse("a] or b")), "[or a] b]");
}

} // namespace
} // namespace morquill::taskdsl::derive
