#include "taskdsl/task/when_expr.h"

#include "support/match.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A condition in a form that shows its tree: `or(completed<a>, {x}<=[1])`; placeholders in braces, literals
/// in brackets.
std::string shape(const TaskWhenExpr& expr) {
    const auto side = [](const WhenOperand& operand) {
        return operand.kind == WhenOperandKind::placeholder ? "{" + operand.text + "}"
                                                            : "[" + operand.text + "]";
    };
    return std::visit(
        Match{[](const WhenDefined& node) { return "defined<" + node.operand + ">"; },
              [](const WhenCompleted& node) { return "completed<" + node.operand + ">"; },
              [&](const WhenComparison& node) {
                  const std::vector<std::string> ops{"=", "!=", "<", "<=", ">", ">="};
                  return side(node.left) + ops.at(static_cast<std::size_t>(node.op)) + side(node.right);
              },
              [](const WhenGroup& node) {
                  std::vector<std::string> children;
                  for (const auto& child : node.children) {
                      children.push_back(shape(*child));
                  }
                  return (node.op == WhenGroupOp::conjunction ? "and(" : "or(") + join(children, ", ") + ")";
              },
              [](const WhenText& node) { return "text<" + node.text + ">"; }},
        expr.node);
}

std::string shapeOf(std::string_view text) {
    return shape(parseWhenExpr(text));
}

struct ParseCase {
    std::string_view text;
    std::string_view shape;
    std::string_view printed;
};

TEST(WhenExpr, ParsesAndPrints) {
    const std::vector<ParseCase> cases{
        {"", "text<>", ""},
        {" \t ", "text<>", ""},
        {"foo bar", "text<foo bar>", "foo bar"},
        {"completed task1", "completed<task1>", "completed task1"},
        {"Completed task1", "completed<task1>", "completed task1"},
        {"COMPLETED\ttask1 ", "completed<task1>", "completed task1"},
        {"completed", "completed<>", "completed "},
        {"completedtask", "text<completedtask>", "completedtask"},
        {"completed a b", "completed<a b>", "completed a b"},
        {"defined x", "defined<x>", "defined x"},
        {"DEFINED", "defined<>", "defined "},
        {"defined a = b", "defined<a = b>", "defined a = b"},
        {"completed a and completed b or defined x", "or(and(completed<a>, completed<b>), defined<x>)",
         "completed a and completed b or defined x"},
        {"(completed a or completed b) and defined x", "and(or(completed<a>, completed<b>), defined<x>)",
         "(completed a or completed b) and defined x"},
        {"(completed a and completed b)", "and(completed<a>, completed<b>)", "completed a and completed b"},
        {"(a and b) or c", "or(and(text<a>, text<b>), text<c>)", "a and b or c"},
        {"(a and b) and c", "and(and(text<a>, text<b>), text<c>)", "a and b and c"},
        {"(a or b) or c", "or(or(text<a>, text<b>), text<c>)", "a or b or c"},
        {"a AND b oR c", "or(and(text<a>, text<b>), text<c>)", "a and b or c"},
        {"a\vor\fb", "or(text<a\v>, text<\fb>)", "a\v or \fb"},
        {"{{ task.energy }} < -1.5", "{task.energy}<[-1.5]", "{{ task.energy }} < -1.5"},
        {"{{task.energy}}>={{  ref.energy}}", "{task.energy}>={ref.energy}",
         "{{ task.energy }} >= {{ ref.energy }}"},
        {"{{ a and b }} = 1", "{a and b}=[1]", "{{ a and b }} = 1"},
        {"'a or b' = 1 and \"c and d\" = 2", "and(['a or b']=[1], [\"c and d\"]=[2])",
         "'a or b' = 1 and \"c and d\" = 2"},
        {R"("a\" or b" = 1)", R"(["a\" or b"]=[1])", R"("a\" or b" = 1)"},
        {"a == b", "[a]=[b]", "a = b"},
        {"a=b", "[a]=[b]", "a = b"},
        {"a!=b", "[a]!=[b]", "a != b"},
        {"a <= b", "[a]<=[b]", "a <= b"},
        {"a >= b", "[a]>=[b]", "a >= b"},
        {"a > b", "[a]>[b]", "a > b"},
        {"a < b", "[a]<[b]", "a < b"},
        {"a = b = c", "[a]=[b = c]", "a = b = c"},
        {"a => b", "[a]=[> b]", "a = > b"},
        {"a==", "[a]=[=]", "a = ="},
        {"a <=", "[a]<[=]", "a < ="},
        {"a !", "text<a !>", "a !"},
        {"= a", "text<= a>", "= a"},
        {"= = a", "[=]=[a]", "= = a"},
        {"a =", "text<a =>", "a ="},
        {"()", "text<>", ""},
        {"( ( a ) )", "text<a>", "a"},
        {"(a) or (b)", "or(text<a>, text<b>)", "a or b"},
        {"((a) or (b))", "or(text<a>, text<b>)", "a or b"},
        {"((a or b)", "text<((a or b)>", "((a or b)"},
        {"(a or b))", "text<(a or b))>", "(a or b))"},
        {R"((a \) or b))", R"(or(text<a \)>, text<b>))", R"(a \) or b)"},
        {R"((a \( or b))", R"(text<a \( or b>)", R"(a \( or b)"},
        {"(a ')' or b)", "or(text<a ')'>, text<b>)", "a ')' or b"},
        {"({{ ) }} = 1)", "{)}=[1]", "{{ ) }} = 1"},
        {"(a ')", "text<(a ')>", "(a ')"},
        {"a or", "text<a or>", "a or"},
        {"or a", "text<or a>", "or a"},
        {"or", "text<or>", "or"},
        {"a or or b", "or(text<a>, text<b>)", "a or b"},
        {"(a)or b", "text<(a)or b>", "(a)or b"},
        {"order and candy", "and(text<order>, text<candy>)", "order and candy"},
        {"don't or b", "text<don't or b>", "don't or b"},
        {"{{}} = 1", "{}=[1]", "{{  }} = 1"},
        {"{{} = 1", "[{{}]=[1]", "{{} = 1"},
    };
    for (const auto& each : cases) {
        const auto expr = parseWhenExpr(each.text);
        EXPECT_EQ(shape(expr), each.shape) << each.text;
        EXPECT_EQ(formatWhenExpr(expr), each.printed) << each.text;
    }
}

TEST(WhenExpr, AnOperatorWithoutARightSideGivesAPartOfItselfUp) {
    // `!=` has nothing after it; no shorter operator is in its place, and after the `=` there is
    // nothing.
    EXPECT_EQ(shapeOf("a !="), "text<a !=>");
    EXPECT_EQ(shapeOf("a !=="), "[a]!=[=]");
    EXPECT_EQ(shapeOf("<<"), "text<<<>");
    EXPECT_EQ(shapeOf("<<<"), "[<]<[<]");
}

TEST(WhenExpr, AComparisonSideHoldsNoLineBreak) {
    EXPECT_EQ(shapeOf("a\r= b"), "[a]=[b]");
    EXPECT_EQ(shapeOf("a =\n b"), "[a]=[b]");
    EXPECT_EQ(shapeOf("a = b\rc"), "text<a = b\rc>");
    EXPECT_EQ(shapeOf("a\nb = c"), "text<a\nb = c>");
    EXPECT_EQ(shapeOf("\v= b"), "[\v]=[b]");
    EXPECT_EQ(shapeOf("a =\v"), "[a]=[\v]");
}

/// The pattern of a comparison, tried out in the order in which a backtracking matcher tries.
std::string slowComparison(const std::string& text) {
    const auto dots = [&](std::size_t begin, std::size_t end) {
        return text.substr(begin, end - begin).find_first_of("\r\n") == std::string::npos;
    };
    const auto spaces = [&](std::size_t begin, std::size_t end) {
        const auto part = text.substr(begin, end - begin);
        return std::all_of(part.begin(), part.end(), isSpace);
    };
    const std::vector<std::string> ops{"==", "=", "!=", "<=", ">=", "<", ">"};
    const auto n = text.size();
    for (std::size_t s = n + 1; s-- > 0;) {
        for (std::size_t e = s + 1; spaces(0, s) && e <= n && dots(s, e); ++e) {
            for (std::size_t p = n + 1; p-- > e;) {
                for (const auto& op : ops) {
                    if (!spaces(e, p) || text.compare(p, op.size(), op) != 0) {
                        continue;
                    }
                    const auto behind = p + op.size();
                    for (std::size_t g = n + 1; g-- > behind;) {
                        for (std::size_t h = g + 1; spaces(behind, g) && h <= n && dots(g, h); ++h) {
                            if (spaces(h, n)) {
                                return "[" + std::string(trim(text.substr(s, e - s))) + "]" +
                                       (op == "==" ? "=" : op) + "[" +
                                       std::string(trim(text.substr(g, h - g))) + "]";
                            }
                        }
                    }
                }
            }
        }
    }
    return "text<" + std::string(text) + ">";
}

TEST(WhenExpr, FindsTheSameComparisonAsABacktrackingMatcher) {
    std::mt19937 random(7);
    constexpr std::string_view alphabet = "ab==!<> \v\r\n";
    for (int round = 0; round < 8000; ++round) {
        std::string text;
        for (auto length = random() % 9; length > 0; --length) {
            text += alphabet[random() % alphabet.size()];
        }
        const std::string trimmed(trim(text));
        ASSERT_EQ(shapeOf(text), slowComparison(trimmed)) << ::testing::PrintToString(text);
    }
}

/// One enclosing pair after the other, each found by a walk of its own.
std::string slowStrip(std::string text) {
    for (;;) {
        text = trim(text);
        if (text.size() < 2 || text.front() != '(' || text.back() != ')') {
            return text;
        }
        int depth = 0;
        int braces = 0;
        char quote = '\0';
        bool encloses = false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char c = text[i];
            if (c == '\\') {
                ++i;
            } else if (quote != '\0') {
                quote = c == quote ? '\0' : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (text.compare(i, 2, "{{") == 0) {
                ++braces;
                ++i;
            } else if (text.compare(i, 2, "}}") == 0 && braces > 0) {
                --braces;
                ++i;
            } else if (braces == 0 && c == '(') {
                ++depth;
            } else if (braces == 0 && c == ')' && --depth <= 0) {
                encloses = depth == 0 && i + 1 == text.size();
                break;
            }
        }
        if (!encloses) {
            return text;
        }
        text = text.substr(1, text.size() - 2);
    }
}

TEST(WhenExpr, StripsTheSamePairsAsOneByOne) {
    std::mt19937 random(11);
    constexpr std::string_view alphabet = "(((()))) a'\\\v";
    const std::vector<std::string> pieces{"{{", "}}"};
    for (int round = 0; round < 20000; ++round) {
        std::string text = "(";
        for (auto length = random() % 10; length > 0; --length) {
            const auto pick = random() % (alphabet.size() + 1);
            text += pick < alphabet.size() ? std::string(1, alphabet[pick]) : pieces[random() % 2];
        }
        text += ")";
        // No keyword and no operator can arise, so the text that is left is the whole node.
        ASSERT_EQ(shapeOf(text), "text<" + slowStrip(text) + ">") << text;
    }
}

TEST(WhenExpr, HundredThousandParenthesesAndKeywordsAreNoTrouble) {
    constexpr std::size_t many = 100000;
    EXPECT_EQ(shapeOf(std::string(many, '(') + "completed a" + std::string(many, ')')), "completed<a>");
    EXPECT_EQ(parseWhenExpr(std::string(many, '(')).node.index(), 4U);
    for (const std::string_view word : {" and ", " or "}) {
        std::string text = "completed a0";
        for (std::size_t i = 1; i < many; ++i) {
            text.append(word).append("completed a").append(std::to_string(i));
        }
        const auto expr = parseWhenExpr(text);
        EXPECT_EQ(std::get<WhenGroup>(expr.node).children.size(), many);
        EXPECT_EQ(formatWhenExpr(expr), text);
        EXPECT_EQ(collectCompletedTargets(expr).size(), many);
    }
}

std::string nested(int groups) {
    std::string text;
    for (int i = 0; i < groups; ++i) {
        text += i % 2 == 0 ? "(a and " : "(b or ";
    }
    return text + "x" + std::string(static_cast<std::size_t>(groups), ')');
}

TEST(WhenExpr, NestingIsBounded) {
    EXPECT_EQ(parseWhenExpr(nested(maxWhenNesting)).node.index(), 3U);
    for (const int groups : {maxWhenNesting + 1, 5000}) {
        try {
            (void)parseWhenExpr(nested(groups));
            FAIL() << groups;
        } catch (const DiagnosticError& error) {
            EXPECT_STREQ(error.what(), "%when condition nests groups more than 50 levels deep");
        }
    }
}

TEST(WhenExpr, SplitsAtKeywordsInTheOpenOnly) {
    EXPECT_THAT(splitWhenTopLevel(" a or b Or c ", "or"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(splitWhenTopLevel("a and b", "or"), ElementsAre("a and b"));
    EXPECT_THAT(splitWhenTopLevel("(a or b) or c", "or"), ElementsAre("(a or b)", "c"));
    EXPECT_THAT(splitWhenTopLevel("{{ a or b }} or c", "or"), ElementsAre("{{ a or b }}", "c"));
    EXPECT_THAT(splitWhenTopLevel("'a or b' or \"c or d\"", "or"), ElementsAre("'a or b'", "\"c or d\""));
    EXPECT_THAT(splitWhenTopLevel(R"('a\' or b' or c)", "or"), ElementsAre(R"('a\' or b')", "c"));
    EXPECT_THAT(splitWhenTopLevel(R"(a\' or b)", "or"), ElementsAre(R"(a\' or b)"));
    EXPECT_THAT(splitWhenTopLevel("aor b or_ c orr", "or"), ElementsAre("aor b or_ c orr"));
    EXPECT_THAT(splitWhenTopLevel("or a or or", "or"), ElementsAre("a"));
    EXPECT_THAT(splitWhenTopLevel("a) or b", "or"), ElementsAre("a)", "b"));
    EXPECT_THAT(splitWhenTopLevel("}} a or b", "or"), ElementsAre("}} a", "b"));
    EXPECT_THAT(splitWhenTopLevel("", "or"), IsEmpty());
}

TEST(WhenExpr, ASplitTakesOneStepIntoACondition) {
    const auto either = splitWhen(" ((a = b and c = d OR (e or f))) ");
    EXPECT_EQ(either.text, "a = b and c = d OR (e or f)");
    EXPECT_EQ(either.op, WhenGroupOp::disjunction);
    EXPECT_THAT(either.parts, ElementsAre("a = b and c = d", "(e or f)"));
    const auto both = splitWhen("a = b and (e or f)");
    EXPECT_EQ(both.op, WhenGroupOp::conjunction);
    EXPECT_THAT(both.parts, ElementsAre("a = b", "(e or f)"));
    const auto leaf = splitWhen("((a)and (b))");
    EXPECT_EQ(leaf.text, "(a)and (b)");
    EXPECT_THAT(leaf.parts, IsEmpty());
    EXPECT_THAT(splitWhen("a or").parts, IsEmpty());
}

TEST(WhenExpr, PlaceholdersNeedMoreThanThreeCharacters) {
    EXPECT_TRUE(isWhenPlaceholder(" {{ a.b }} "));
    EXPECT_TRUE(isWhenPlaceholder("{{}}"));
    EXPECT_FALSE(isWhenPlaceholder("{{}"));
    EXPECT_FALSE(isWhenPlaceholder("{{ a }"));
    EXPECT_FALSE(isWhenPlaceholder("{ a }}"));
    EXPECT_FALSE(isWhenPlaceholder(""));
    EXPECT_EQ(whenPlaceholderBody(" {{ a.b }} "), "a.b");
    EXPECT_EQ(whenPlaceholderBody("{{}}"), "");
}

TEST(WhenExpr, WalkersVisitEveryGroup) {
    const auto expr =
        parseWhenExpr("(completed a or completed b and (completed c or {{ x }} = 1)) and completed");
    EXPECT_THAT(collectCompletedTargets(expr), ElementsAre("a", "b", "c"));
    EXPECT_FALSE(hasAllOthers(expr));
    EXPECT_TRUE(hasAllOthers(parseWhenExpr("completed AllOthers")));
    EXPECT_TRUE(hasAllOthers(parseWhenExpr("defined x and (completed a or completed allothers)")));
    EXPECT_FALSE(hasAllOthers(parseWhenExpr("defined allothers")));
    EXPECT_FALSE(hasAllOthers(parseWhenExpr("completed allothers2")));
    EXPECT_THAT(collectCompletedTargets(parseWhenExpr("allothers")), IsEmpty());
    EXPECT_THAT(
        collectPlaceholders(parseWhenExpr("({{ a.x }} < {{b}} or 1 = {{ a.x }}) and defined {{ c }}")),
        ElementsAre("a.x", "b", "a.x"));
    EXPECT_THAT(collectPlaceholders(parseWhenExpr("{{ a")), IsEmpty());
}

} // namespace
} // namespace morquill::taskdsl
