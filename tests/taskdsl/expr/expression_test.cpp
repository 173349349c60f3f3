#include "taskdsl/expr/expression.h"

#include "taskdsl/base/diagnostic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace morquill::taskdsl::plot {
namespace {

const SourceSpan somewhere{"a.mq", 3, 2, 3, 9};

ExprRef read(std::string_view text) {
    return parsePlotExpression(text, somewhere);
}

std::string printed(std::string_view text) {
    return renderPlotExpression(read(text));
}

std::string faultOf(std::string_view text) {
    try {
        (void)read(text);
    } catch (const DiagnosticError& error) {
        EXPECT_EQ(error.span(), somewhere);
        return error.message();
    }
    return "no fault";
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

TEST(PlotExpression, TokensEndWhereTheyMust) {
    const auto call = read(R"(f( a.b:c[1]+1e3*.5, "x\ny\q" ,{{ t.k }}-[k],x1=1.e-2/_b))");
    const auto* node = expressionAs<CallExpr>(call);
    ASSERT_NE(node, nullptr);
    ASSERT_EQ(node->arguments.size(), 4U);
    EXPECT_EQ(renderPlotExpression(node->arguments[0].value), "a.b:c[1] + 1000 * 0.5");
    EXPECT_EQ(expressionAs<StringExpr>(node->arguments[1].value)->text, "x\nyq");
    EXPECT_EQ(renderPlotExpression(node->arguments[2].value), "{{ t.k }} - [k]");
    EXPECT_EQ(node->arguments[3].name, "x1");
    EXPECT_EQ(renderPlotExpression(node->arguments[3].value), "0.01 / _b");
}

TEST(PlotExpression, NumbersAreReadAsInC) {
    const std::vector<std::pair<std::string_view, double>> rows{
        {"0", 0},
        {"007", 7},
        {"1.", 1},
        {".25", 0.25},
        {"1e3", 1000},
        {"1E+3", 1000},
        {"1e-3", 1e-3},
        {"0x1F", 31},
        {"0X.8p1", 1},
        {"0x1p-2", 0.25},
        {"1e999", HUGE_VAL},
        {"1e-999", 0},
        {"4.9e-324", 5e-324},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
    };
    for (const auto& [text, value] : rows) {
        const auto number = read(text);
        ASSERT_NE(expressionAs<NumberExpr>(number), nullptr) << text;
        EXPECT_EQ(expressionAs<NumberExpr>(number)->value, value) << text;
    }
    // What does not belong to the number is the next token.
    EXPECT_EQ(faultOf("1e"), "unexpected token 'e'");
    EXPECT_EQ(faultOf("0x"), "unexpected token 'x'");
    EXPECT_EQ(faultOf("0xg"), "unexpected token 'xg'");
    EXPECT_EQ(faultOf("1e999e"), "unexpected token 'e'");
    EXPECT_EQ(printed("0x1f-0x1F"), "31 - 31");
}

TEST(PlotExpression, PrintsWithMinimalParentheses) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows{
        {"a", "a"},
        {" a+b ", "a + b"},
        {"a - (b - c)", "a - (b - c)"},
        {"a - (b + c)", "a - (b + c)"},
        {"a + (b + c)", "a + b + c"},
        {"a + (b - c)", "a + b - c"},
        {"(a - b) - c", "a - b - c"},
        {"a / (b / c)", "a / (b / c)"},
        {"a / (b * c)", "a / (b * c)"},
        {"a * (b * c)", "a * b * c"},
        {"a * (b / c)", "a * b / c"},
        {"(a + b) * c", "(a + b) * c"},
        {"a * (b + c)", "a * (b + c)"},
        {"(a * b) + c", "a * b + c"},
        {"-(a + b)", "-(a + b)"},
        {"-(a * b)", "-(a * b)"},
        {"-a * b", "-a * b"},
        {"a - -b", "a - -b"},
        {"- + a", "-+a"},
        {"-(-a)", "--a"},
        {"a * -b", "a * -b"},
        {"((a))", "a"},
        {"f()", "f()"},
        {"f ( x = 1 , 2 , g( y ) )", "f(x=1, 2, g(y))"},
        {"f(a + b, c=(d))", "f(a + b, c=d)"},
        {"f(-(a))", "f(-a)"},
        {"1e3", "1000"},
        {"1e20", "1e+20"},
        {"0.1", "0.1"},
        {"0x1F", "31"},
        {"627.509474063112345", "627.509474063112"},
        {"1e999", "1e+999"},
        {"1.7976931348623157e308", "1.7976931348623157e+308"},
        {R"("a\\b\"c\'d\te")", R"("a\\b\"c'd\te")"},
        {"{{a.b}}", "{{ a.b }}"},
        {"{{ a.  b.c d }}", "{{ a.b.c d }}"},
        {"[key]x.y", "[key]x.y"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(printed(text), expected) << text;
        EXPECT_EQ(printed(expected), expected) << text;
    }
}

TEST(PlotExpression, PrintTellsWhatItLoses) {
    const std::vector<std::pair<std::string_view, std::string_view>> rows{
        {"a - (b - c) * -d / (e * f)", ""},
        {"(a + b) + c", ""},
        {"0.1 + 123456789012345 + 1e300 + 1e999", ""},
        {"1.7976931348623157e308", ""},
        {"{{ a.b c.d }} + {{ a b.\\ }}", ""},
        {"a + (b - c)", "parentheses on the right of '+' are not printed"},
        {"f(a, x=-(a * (b / c)))", "parentheses on the right of '*' are not printed"},
        {"a + b * (c + 627.509474063112345)", "the number 627.50947406311229 prints with 15 digits"},
    };
    for (const auto& [text, expected] : rows) {
        const auto expression = read(text);
        const auto print = printExpression(expression);
        EXPECT_EQ(print.loss, expected) << text;
        EXPECT_EQ(equalExpressions(read(print.text), expression), expected.empty()) << print.text;
    }
}

TEST(PlotExpression, PrintTellsWhatOnlySubstitutionCanBringIn) {
    const auto name = [](const std::string& text) { return makeExpression(IdentifierExpr{text}); };
    const std::vector<std::pair<ExprRef, std::string_view>> rows{
        {name(""), "'' is no name"},
        {name("a b"), "'a b' is no name"},
        {name("2"), "'2' is no name"},
        {makeExpression(CallExpr{"f g", {}}), "'f g' is no name"},
        {makeExpression(CallExpr{"f", {{"x y", true, name("a")}}}), "'x y' is no name"},
        {makeExpression(SnapshotExpr{"a.b", "c"}), "'{{ a.b.c }}' is no reference"},
        {makeExpression(SnapshotExpr{"", "c"}), "'{{ .c }}' is no reference"},
        {makeExpression(SnapshotExpr{"a", " c"}), "'{{ a. c }}' is no reference"},
    };
    for (const auto& [expression, expected] : rows) {
        EXPECT_EQ(printExpression(expression).loss, expected);
    }
    ExprRef deep = name("a");
    for (std::size_t i = 0; i < maxExpressionDepth; ++i) {
        deep = makeExpression(UnaryExpr{UnaryOp::minus, deep});
    }
    EXPECT_EQ(printExpression(deep).loss, "");
    deep = makeExpression(CallExpr{"f", {{"", false, deep}}});
    EXPECT_EQ(printExpression(deep).loss, "the expression is nested too deeply");
}

TEST(PlotExpression, TheTreeIsLeftAssociative) {
    const auto sum = read("a - b * c - d");
    const auto* outer = expressionAs<BinaryExpr>(sum);
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(outer->op, BinaryOp::subtract);
    EXPECT_EQ(renderPlotExpression(outer->left), "a - b * c");
    EXPECT_EQ(renderPlotExpression(outer->right), "d");
}

TEST(PlotExpression, NodesHoldWhatWasWritten) {
    const auto call = read("energy(opt, kind='E', {{ self. key }}, -2.5)");
    const auto* node = expressionAs<CallExpr>(call);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->name, "energy");
    ASSERT_EQ(node->arguments.size(), 4U);
    EXPECT_FALSE(node->arguments[0].named);
    EXPECT_EQ(expressionAs<IdentifierExpr>(node->arguments[0].value)->name, "opt");
    EXPECT_TRUE(node->arguments[1].named);
    EXPECT_EQ(node->arguments[1].name, "kind");
    EXPECT_EQ(expressionAs<StringExpr>(node->arguments[1].value)->text, "E");
    EXPECT_EQ(expressionAs<SnapshotExpr>(node->arguments[2].value)->task, "self");
    EXPECT_EQ(expressionAs<SnapshotExpr>(node->arguments[2].value)->key, "key");
    const auto* sign = expressionAs<UnaryExpr>(node->arguments[3].value);
    ASSERT_NE(sign, nullptr);
    EXPECT_EQ(sign->op, UnaryOp::minus);
    EXPECT_EQ(expressionAs<NumberExpr>(sign->operand)->value, 2.5);
}

TEST(PlotExpression, EveryFault) {
    const std::string needed = "expected a number, identifier, string, function call, or '('";
    const std::vector<std::pair<std::string, std::string>> rows{
        {"", "empty plot expression"},
        {" \t ", "empty plot expression"},
        {"\"a", "unterminated string in plot expression"},
        {"'it''", "unterminated string in plot expression"},
        {"\"a\\", "unterminated string in plot expression"},
        {"{{ a.b", "unterminated '{{ ... }}' snapshot reference"},
        {"{{ a.b }", "unterminated '{{ ... }}' snapshot reference"},
        {"{{  }}", "empty snapshot reference"},
        {"{{ a }}", "snapshot reference must be '{{ task.key }}'"},
        {"{{ .a }}", "snapshot reference must be '{{ task.key }}'"},
        {"{{ a. }}", "snapshot reference must be '{{ task.key }}'"},
        {"a ? b", "unexpected character '?' in plot expression"},
        {"a {", "unexpected character '{' in plot expression"},
        {"]", "unexpected character ']' in plot expression"},
        {".", "unexpected character '.' in plot expression"},
        {"\\", "unexpected character '\\' in plot expression"},
        {"\u0394G", "unexpected character '\u0394' in plot expression"},
        {"a + \u20AC", "unexpected character '\u20AC' in plot expression"},
        {"\U0001F9EAx", "unexpected character '\U0001F9EA' in plot expression"},
        // What is no UTF-8 is named byte by byte.
        {"\xC3", "unexpected character '\xC3' in plot expression"},
        {"\xE2\x82x", "unexpected character '\xE2' in plot expression"},
        {"\x82", "unexpected character '\x82' in plot expression"},
        {std::string("a\0b", 3), std::string("unexpected character '\0' in plot expression", 43)},
        {"a +", needed},
        {"* a", needed},
        {")", needed},
        {"()", needed},
        {"f(,)", needed},
        {"f(a,)", needed},
        {"f(x=)", needed},
        {"=", needed},
        {"(a", "expected ')' in plot expression"},
        {"(a = b)", "expected ')' in plot expression"},
        {"f(a b)", "expected ',' or ')' after function argument"},
        {"f(a", "expected ',' or ')' after function argument"},
        {"f(1 = 2)", "expected ',' or ')' after function argument"},
        {"a b", "unexpected token 'b'"},
        {"a = b", "unexpected token '='"},
        {"1.5.3", "unexpected token '.3'"},
        {"a \"b c\"", "unexpected token 'b c'"},
        {"a {{ b.c }}", "unexpected token 'b.c'"},
        {"a)", "unexpected token ')'"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(faultOf(text), expected) << text;
    }
}

TEST(PlotExpression, TheLeftmostFaultIsReported) {
    EXPECT_EQ(faultOf(") \"open"), "expected a number, identifier, string, function call, or '('");
    EXPECT_EQ(faultOf("a b \"open"), "unexpected token 'b'");
    EXPECT_EQ(faultOf("a \"open )"), "unterminated string in plot expression");
    EXPECT_EQ(faultOf("{{ a }} ?"), "snapshot reference must be '{{ task.key }}'");
}

TEST(PlotExpression, AnInvalidSpanGivesTheBareMessage) {
    try {
        (void)parsePlotExpression("", SourceSpan{});
        FAIL();
    } catch (const DiagnosticError& error) {
        EXPECT_STREQ(error.what(), "empty plot expression");
    }
}

TEST(PlotExpression, NestingIsBounded) {
    const std::vector<std::pair<std::string, std::string>> brackets{
        {"(", ")"}, {"-", ""}, {"f(", ")"}, {"-(", ")"}};
    for (const auto& [open, close] : brackets) {
        const std::size_t most = maxExpressionDepth / (open == "-(" ? 2 : 1);
        EXPECT_NO_THROW((void)printed(repeated(open, most) + "a" + repeated(close, most))) << open;
        for (const std::size_t count : {most + 1, std::size_t{100000}}) {
            EXPECT_EQ(faultOf(repeated(open, count) + "a" + repeated(close, count)),
                      "expression is nested too deeply")
                << open;
        }
    }
    // Depth is left again: many shallow groups in a row are no nesting.
    EXPECT_NO_THROW((void)read("(a)" + repeated(" + (-f(a))", 2 * maxExpressionDepth)));
}

TEST(PlotExpression, LongChainsAreReadPrintedComparedAndFreedWithoutRecursion) {
    const std::vector<std::pair<std::string_view, std::size_t>> chains{
        {" + abcdefgh", 100000}, {" * a", 30000}, {" - -a", 30000}};
    for (const auto& [term, count] : chains) {
        const std::string text = "a" + repeated(term, count);
        const auto expression = read(text);
        EXPECT_EQ(renderPlotExpression(expression), text);
        EXPECT_TRUE(equalExpressions(expression, read(text)));
    }
}

TEST(PlotExpression, DeepTreesBuiltByHandAreFreedWithoutRecursion) {
    ExprRef deep = makeExpression(IdentifierExpr{"a"});
    for (int i = 0; i < 100000; ++i) {
        deep =
            i % 2 == 0
                ? makeExpression(CallExpr{"f", {{"", false, std::move(deep)}}})
                : makeExpression(BinaryExpr{BinaryOp::add, makeExpression(NumberExpr{1}), std::move(deep)});
    }
    const ExprRef kept = expressionAs<BinaryExpr>(deep)->right;
    deep = nullptr;
    EXPECT_EQ(renderPlotExpression(kept).substr(0, 6), "f(1 + ");
}

TEST(PlotExpression, WhatIsPrintedReadsAsItselfUnlessSomethingIsLost) {
    const auto same = read("a - (b - c)");
    EXPECT_EQ(readPrinted(same, printExpression(same)), same);

    const auto grouped = read("a + (b + c)");
    EXPECT_TRUE(equalExpressions(readPrinted(grouped, printExpression(grouped)), read("a + b + c")));

    const auto stray = makeExpression(IdentifierExpr{"a)"});
    EXPECT_EQ(readPrinted(stray, printExpression(stray)), nullptr);
}

TEST(PlotExpression, TheFirstNameThatIsNoneIsTheLoss) {
    const auto call = makeExpression(CallExpr{
        "f", {{"a b", true, makeExpression(NumberExpr{1})}, {"c d", true, makeExpression(NumberExpr{2})}}});
    EXPECT_EQ(printExpression(call).loss, "'a b' is no name");
}

TEST(PlotExpression, ANameGoesOnWithLettersDigitsAndFiveSigns) {
    std::string others;
    for (int byte = 0; byte < 256; ++byte) {
        const auto c = static_cast<char>(byte);
        others.append(isExpressionNameChar(c) && !isLetter(c) && !isDigit(c) ? 1 : 0, c);
    }
    EXPECT_EQ(others, ".:[]_");
    EXPECT_TRUE(isExpressionNameChar('0') && isExpressionNameChar('z') && isExpressionNameChar('Z'));
}

TEST(PlotExpression, OnlyNamesAndStringsHaveAText) {
    EXPECT_EQ(*nameOrString(read("a.b")), "a.b");
    EXPECT_EQ(*nameOrString(read("'a b'")), "a b");
    for (const std::string_view text : {"1", "-a", "f()", "{{ a.b }}", "a + b"}) {
        EXPECT_EQ(nameOrString(read(text)), nullptr) << text;
    }
    EXPECT_EQ(nameOrString(nullptr), nullptr);
}

TEST(PlotExpression, WhereANameOrStringIsAskedForNothingElsePasses) {
    EXPECT_EQ(requireNameOrString(read("a.b"), "selector", somewhere), "a.b");
    EXPECT_EQ(requireNameOrString(read("'a b'"), "selector", somewhere), "a b");
    try {
        (void)requireNameOrString(read("1"), "selector", somewhere);
        FAIL() << "a number passed";
    } catch (const DiagnosticError& error) {
        EXPECT_EQ(error.message(), "selector must be an identifier or string literal");
        EXPECT_EQ(error.span(), somewhere);
    }
}

TEST(PlotExpression, MappingRebuildsWhatChangedAndSharesTheRest) {
    const auto source = read("f(a, x=b) + -c * (d - a)");
    const auto renamed = mapExpression(source, [](const ExprRef& node) {
        const auto* identifier = expressionAs<IdentifierExpr>(node);
        return identifier != nullptr && identifier->name == "b" ? read("p + q") : node;
    });
    EXPECT_EQ(renderPlotExpression(renamed), "f(a, x=p + q) + -c * (d - a)");
    EXPECT_EQ(renderPlotExpression(source), "f(a, x=b) + -c * (d - a)");
    EXPECT_EQ(expressionAs<BinaryExpr>(renamed)->right, expressionAs<BinaryExpr>(source)->right);

    const auto same = mapExpression(source, [](const ExprRef& node) { return node; });
    EXPECT_EQ(same, source);
    EXPECT_EQ(mapExpression(nullptr, [](const ExprRef& node) { return node; }), nullptr);
}

TEST(PlotExpression, EqualityLooksAtEveryPart) {
    const std::vector<std::string_view> texts{"a",         "b",         "\"a\"",     "1",       "2",
                                              "-a",        "+a",        "a + b",     "a - b",   "b + a",
                                              "{{ a.b }}", "{{ a.c }}", "{{ b.b }}", "f()",     "g()",
                                              "f(a)",      "f(x=a)",    "f(y=a)",    "f(a, b)", "a + b + c"};
    for (const auto& left : texts) {
        for (const auto& right : texts) {
            EXPECT_EQ(equalExpressions(read(left), read(right)), left == right) << left << " and " << right;
        }
    }
    EXPECT_TRUE(equalExpressions(nullptr, nullptr));
    EXPECT_FALSE(equalExpressions(nullptr, read("a")));
}

TEST(PlotExpression, AnEmptyReferencePrintsNothing) {
    EXPECT_EQ(renderPlotExpression(nullptr), "");
}

} // namespace
} // namespace morquill::taskdsl::plot
