#include "taskdsl/expr/substitute_expression.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl::plot {
namespace {

const ValueMap values{{"k", "v"}, {"two", "a b"}, {"loop", "[k]"}, {"none", ""}};

ExprRef parsedText(std::string_view text) {
    return parsePlotExpression(text, {});
}

TEST(SubstituteExpression, ReachesEveryNameAndText) {
    const std::pair<const char*, const char*> rows[] = {
        {"[k]", "v"},
        {"a[k]b.[k]", "avb.v"},
        {"'x [k]'", "\"x v\""},
        {"'[two]'", "\"a b\""},
        {"{{ [k].energy }}", "{{ v.energy }}"},
        {"{{ t.[k] }}", "{{ t.v }}"},
        {"f[k](1)", "fv(1)"},
        {"f(x[k]=[k])", "f(xv=v)"},
        {"-[k] * (a - [k])", "-v * (a - v)"},
        // What was put in is not looked at again; an unknown key stays as it is written.
        {"'[loop]'", "\"[k]\""},
        {"[other]", "[other]"},
        {"'[none]'", "\"\""},
        {"2 + 3", "2 + 3"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(renderPlotExpression(substituteExpression(parsedText(text), values)), expected) << text;
    }
}

TEST(SubstituteExpression, AValueStaysOneNameWhateverItLooksLike) {
    const auto result = substituteExpression(parsedText("[two]"), values);
    ASSERT_NE(expressionAs<IdentifierExpr>(result), nullptr);
    EXPECT_EQ(expressionAs<IdentifierExpr>(result)->name, "a b");
}

TEST(SubstituteExpression, SharesWhatDoesNotChange) {
    const auto untouched = parsedText("f(a, x='b') - {{ t.k }} * [other]");
    EXPECT_EQ(substituteExpression(untouched, values), untouched);
    const auto source = parsedText("g([k]) + h(a)");
    const auto result = substituteExpression(source, values);
    EXPECT_EQ(renderPlotExpression(result), "g(v) + h(a)");
    EXPECT_EQ(expressionAs<BinaryExpr>(result)->right, expressionAs<BinaryExpr>(source)->right);
    EXPECT_EQ(renderPlotExpression(source), "g([k]) + h(a)");
    EXPECT_EQ(substituteExpression(nullptr, values), nullptr);
}

} // namespace
} // namespace morquill::taskdsl::plot
