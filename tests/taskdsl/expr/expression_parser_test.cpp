// The grammar: which tree a text stands for. What trees print as is the matter of expression_test.cpp.

#include "fixtures/awkward_texts.h"
#include "fixtures/faults.h"
#include "support/match.h"
#include "support/shared.h"
#include "taskdsl/expr/expression.h"
#include "taskdsl/expr/plot_text.h"

#include <gtest/gtest.h>

#include <array>

namespace morquill::taskdsl::plot {
namespace {

/// The tree with every node in brackets: `(- (* a b) 2)`, `f[a x=b]`, `{task key}`, `"text"`.
std::string treeOf(const ExprRef& expression) {
    static constexpr std::array binary{"+", "-", "*", "/"};
    const auto call = [](const CallExpr& node) {
        std::string arguments;
        for (const auto& argument : node.arguments) {
            arguments += arguments.empty() ? "" : " ";
            arguments += (argument.named ? argument.name + "=" : "") + treeOf(argument.value);
        }
        return node.name + "[" + arguments + "]";
    };
    return std::visit(
        Match{[](const NumberExpr& node) { return std::to_string(node.value).substr(0, 4); },
              [](const StringExpr& node) { return '"' + node.text + '"'; },
              [](const IdentifierExpr& node) { return node.name; },
              [](const SnapshotExpr& node) { return "{" + node.task + " " + node.key + "}"; }, call,
              [](const UnaryExpr& node) {
                  return std::string(node.op == UnaryOp::minus ? "(- " : "(+ ") + treeOf(node.operand) + ")";
              },
              [](const BinaryExpr& node) {
                  return std::string("(") + binary.at(static_cast<std::size_t>(node.op)) + " " +
                         treeOf(node.left) + " " + treeOf(node.right) + ")";
              }},
        expression->node);
}

TEST(ExpressionParser, StringsReadBack) {
    for (const auto& text : awkwardTexts()) {
        const auto read = parsePlotExpression(quotePlotText(text), {});
        const auto* string = std::get_if<StringExpr>(&read->node);
        ASSERT_NE(string, nullptr) << text;
        EXPECT_EQ(string->text, text);
    }
}

TEST(ExpressionParser, BuildsTheTreeOfTheGrammar) {
    const std::pair<const char*, const char*> rows[] = {
        // Products bind before sums, both from the left; a sign binds before both.
        {"a + b * c", "(+ a (* b c))"},
        {"a * b + c", "(+ (* a b) c)"},
        {"a - b - c", "(- (- a b) c)"},
        {"a - b + c", "(+ (- a b) c)"},
        {"a / b * c / d", "(/ (* (/ a b) c) d)"},
        {"-a * b", "(* (- a) b)"},
        {"a * -b", "(* a (- b))"},
        {"a - -b", "(- a (- b))"},
        {"-+-a", "(- (+ (- a)))"},
        {"-f(a)", "(- f[a])"},
        {"(a + b) * (c - d)", "(* (+ a b) (- c d))"},
        {"-(a + b)", "(- (+ a b))"},
        {"((a))", "a"},
        // Primaries.
        {"1.5", "1.50"},
        {".5e1", "5.00"},
        {"0x10", "16.0"},
        {"'it is'", "\"it is\""},
        {R"("a\tb\\")", "\"a\tb\\\""},
        {R"('\n\r\q\'')", "\"\n\rq'\""},
        {"{{ opt.energy }}", "{opt energy}"},
        {"{{opt.a.b c}}", "{opt a.b c}"},
        {"[k].a:b", "[k].a:b"},
        {"_1", "_1"},
        // Calls: positional and named arguments; a blank may stand before the parenthesis.
        {"f()", "f[]"},
        {"f ( a , b )", "f[a b]"},
        {"f(a + 1, unit=ev, 'x')", "f[(+ a 1.00) unit=ev \"x\"]"},
        {"f(g(h(1)))", "f[g[h[1.00]]]"},
        {"f(x=g(y=1))", "f[x=g[y=1.00]]"},
        // White space and line ends separate and say nothing else.
        {"\t a\n+\r\nb ", "(+ a b)"},
        {"a+b", "(+ a b)"},
    };
    for (const auto& [text, tree] : rows) {
        EXPECT_EQ(treeOf(parsePlotExpression(text, {})), tree) << text;
    }
}

TEST(ExpressionParser, RefusesATextThatIsNotOneExpression) {
    const SourceSpan place{"a.mq", 7, 3, 7, 20};
    const std::string primary = "expected a number, identifier, string, function call, or '('";
    const std::pair<std::string, std::string> rows[] = {
        {"", "empty plot expression"},
        {"a b", "unexpected token 'b'"},
        {"a (b) c", "unexpected token 'c'"},
        {"a /", primary},
        {"/ a", primary},
        {"f(a,, b)", primary},
        {"f(x==1)", primary},
        {"(a, b)", "expected ')' in plot expression"},
        {"f(a; b)", "unexpected character ';' in plot expression"},
        {"f(a = 1 = 2)", "expected ',' or ')' after function argument"},
        {"2 ^ 3", "unexpected character '^' in plot expression"},
        {"'a", "unterminated string in plot expression"},
        {"{{ a.b", "unterminated '{{ ... }}' snapshot reference"},
        {"{{ }}", "empty snapshot reference"},
        {"{{ ab }}", "snapshot reference must be '{{ task.key }}'"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([&, written = text] { (void)parsePlotExpression(written, place); }),
                  "a.mq:7:3-7:20: error: " + message)
            << text;
    }
}

TEST(ExpressionParser, NestingEndsAtItsBoundAndASumOfAnyLengthDoesNotNest) {
    const auto read = [](const std::string& text) {
        return messageOf([&] { (void)parsePlotExpression(text, {}); });
    };
    EXPECT_EQ(read(std::string(1000, '(') + "a" + std::string(1000, ')')), "no fault");
    EXPECT_EQ(read(std::string(1001, '(') + "a" + std::string(1001, ')')), "expression is nested too deeply");
    EXPECT_EQ(read(std::string(1'000'000, '-') + "a"), "expression is nested too deeply");
    std::string sum = "a";
    for (int i = 0; i < 200'000; ++i) {
        sum += "-(b)";
    }
    EXPECT_EQ(read(sum), "no fault");
}

TEST(ExpressionParser, ReadsWhatFollowsTheNameOfAFunction) {
    const auto text = [](std::string_view behind) {
        try {
            return renderPlotExpression(parseCallOf("f", behind, {}));
        } catch (const DiagnosticError& fault) {
            return fault.message();
        }
    };
    EXPECT_EQ(text("()"), "f()");
    EXPECT_EQ(text("(a, b=1 + c)"), "f(a, b=1 + c)");
    EXPECT_EQ(text("(a) * 2 - (b)"), "f(a) * 2 - b");
    EXPECT_EQ(text("(a"), "expected ',' or ')' after function argument");
    EXPECT_EQ(text("(a) b)"), "unexpected token 'b'");
    EXPECT_EQ(text("a"), "expected '(' in plot expression");
    const auto call = parseCallOf("f", "(b=1)", {});
    ASSERT_NE(expressionAs<CallExpr>(call), nullptr);
    EXPECT_TRUE(expressionAs<CallExpr>(call)->arguments.front().named);
}

} // namespace
} // namespace morquill::taskdsl::plot
