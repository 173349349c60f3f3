#pragma once

#include "support/shared.h"
#include "support/text.h"
#include "taskdsl/base/source_span.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The expressions of the plot and derive languages: one tree of immutable, shared nodes, one grammar, one
/// printed form. Everything here but the parser works without recursion, since a sum leans to the left with a
/// level per term.
namespace morquill::taskdsl::plot {

struct PlotExpression;
/// A shared reference to an immutable node; empty means that no expression is present.
using ExprRef = CountedRef<const PlotExpression>;

struct NumberExpr {
    double value = 0;
};
struct StringExpr {
    std::string text; ///< decoded
};
struct IdentifierExpr {
    std::string name;
};
/// `{{ task.key }}`: a value of a finished task.
struct SnapshotExpr {
    std::string task;
    std::string key;
};
struct PlotCallArgument {
    std::string name; ///< empty for a positional argument
    bool named = false;
    ExprRef value;
};
struct CallExpr {
    std::string name;
    std::vector<PlotCallArgument> arguments;
};
enum class UnaryOp : std::int32_t { plus = 0, minus = 1 };
struct UnaryExpr {
    UnaryOp op = UnaryOp::plus;
    ExprRef operand;
};
enum class BinaryOp : std::int32_t { add = 0, subtract = 1, multiply = 2, divide = 3 };
struct BinaryExpr {
    BinaryOp op = BinaryOp::add;
    ExprRef left;
    ExprRef right;
};

/// One node. Made by `makeExpression` only, so that it is always held by an `ExprRef`.
struct PlotExpression {
    using Node =
        std::variant<NumberExpr, StringExpr, IdentifierExpr, SnapshotExpr, CallExpr, UnaryExpr, BinaryExpr>;
    Node node;

    explicit PlotExpression(Node value) : node(std::move(value)) {}
    PlotExpression(const PlotExpression&) = delete;
    PlotExpression& operator=(const PlotExpression&) = delete;
    /// Frees the nodes below that nobody else holds, however deep they go, without recursion.
    ~PlotExpression();
};

/// A node of its own.
[[nodiscard]] ExprRef makeExpression(PlotExpression::Node node);

/// The alternative `T` of the node; null when the reference is empty or the node is something else.
template <class T>
[[nodiscard]] const T* expressionAs(const ExprRef& expression) noexcept {
    return expression ? std::get_if<T>(&expression->node) : nullptr;
}

/// The deepest nesting of parentheses, signs and calls that is read. Operators in a row do not count.
inline constexpr std::size_t maxExpressionDepth = 1000;

/// Reads one expression that takes up the whole text:
///
///     expression := term { ("+" | "-") term }
///     term       := factor { ("*" | "/") factor }
///     factor     := { "+" | "-" } primary
///     primary    := number | string | snapshot | identifier | call | "(" expression ")"
///     call       := identifier "(" [ argument { "," argument } ] ")"
///     argument   := [ identifier "=" ] expression
///
/// Throws `DiagnosticError` with the span of the statement for the leftmost fault.
[[nodiscard]] ExprRef parsePlotExpression(std::string_view text, const SourceSpan& span);

/// Reads the text as what follows the name of a function: `(a, b=c)` is the call. Text after the
/// parentheses continues the expression that the call begins. The text begins with "(".
/// Throws `DiagnosticError` as `parsePlotExpression`.
[[nodiscard]] ExprRef parseCallOf(std::string name, std::string_view text, const SourceSpan& span);

/// `[A-Za-z0-9_.:]` and brackets: the bytes of a name after its first.
[[nodiscard]] constexpr bool isExpressionNameChar(char c) noexcept {
    return isDottedWordChar(c) || c == ':' || c == '[' || c == ']';
}

/// True for a text that is one name of an expression: a letter, `_` or `[`, then letters, digits and `_.:[]`.
[[nodiscard]] bool isExpressionName(std::string_view text) noexcept;

/// The expression with as few parentheses as its tree needs; empty for an empty reference.
[[nodiscard]] std::string renderPlotExpression(const ExprRef& expression);

/// An expression in print, and what print makes of it.
struct PrintedExpression {
    std::string text;
    std::string loss;          ///< why the text does not read as the same expression; empty when it does
    std::size_t depth = 0;     ///< of the deepest nesting, counted as `maxExpressionDepth` is
    bool oddReference = false; ///< a reference holds bytes that a walk through a statement stops at
};
/// The same text, and whether it reads back. It does not where a number has more than 15 digits, where a sum
/// or a product in parentheses is the right operand of another one, and where substitution has put something
/// else than a name in a name's place.
[[nodiscard]] PrintedExpression printExpression(const ExprRef& expression);

/// What the printed text alone reads as: the expression itself where nothing is lost, otherwise what is read
/// instead; an empty reference when the text is refused.
[[nodiscard]] ExprRef readPrinted(const ExprRef& expression, const PrintedExpression& printed);

/// The text of an identifier or a string; null for any other expression.
[[nodiscard]] const std::string* nameOrString(const ExprRef& expression) noexcept;
/// The same; throws `DiagnosticError` "<label> must be an identifier or string literal" for anything else.
[[nodiscard]] const std::string& requireNameOrString(const ExprRef& expression, std::string_view label,
                                                     const SourceSpan& span);

/// Rebuilds a tree from its leaves up: `replace` is called with every node, its children replaced already,
/// and returns the node to put in its place (the same to keep it). Nodes below which nothing changed are
/// shared, not copied.
[[nodiscard]] ExprRef mapExpression(const ExprRef& expression,
                                    const std::function<ExprRef(const ExprRef&)>& replace);

/// True when both trees say the same, node by node; two empty references are equal.
[[nodiscard]] bool equalExpressions(const ExprRef& left, const ExprRef& right);

} // namespace morquill::taskdsl::plot
