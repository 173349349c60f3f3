#pragma once

#include "taskdsl/expr/expression.h"

#include <cstdint>

/// How tightly the nodes of an expression hold together, and so where the printed form has parentheses.
namespace morquill::taskdsl::plot {

enum class Precedence : std::int32_t { anything = 0, sums = 1, products = 2, signs = 3, primaries = 4 };

/// The precedence of a node with this operator, which is also what its left operand is asked for.
[[nodiscard]] constexpr Precedence precedenceOf(BinaryOp op) noexcept {
    return op == BinaryOp::multiply || op == BinaryOp::divide ? Precedence::products : Precedence::sums;
}

/// The precedence of a node.
[[nodiscard]] inline Precedence precedenceOf(const PlotExpression::Node& node) noexcept {
    if (const auto* binary = std::get_if<BinaryExpr>(&node)) {
        return precedenceOf(binary->op);
    }
    return std::holds_alternative<UnaryExpr>(node) ? Precedence::signs : Precedence::primaries;
}

/// What the right operand is asked for: after "-" and "/" it keeps its parentheses at equal precedence.
[[nodiscard]] constexpr Precedence rightPrecedence(BinaryOp op) noexcept {
    switch (op) {
    case BinaryOp::subtract:
        return Precedence::products;
    case BinaryOp::divide:
        return Precedence::signs;
    case BinaryOp::add:
    case BinaryOp::multiply:
        break;
    }
    return precedenceOf(op);
}

/// True when the node is printed in parentheses where `asked` is the lowest precedence that needs none.
[[nodiscard]] inline bool needsParentheses(const PlotExpression& expression, Precedence asked) noexcept {
    return precedenceOf(expression.node) < asked;
}

/// True for a binary node that prints without parentheses on the right of a node of its own precedence, and
/// so becomes a part of the left side when it is read.
[[nodiscard]] inline bool regroups(const BinaryExpr& binary) noexcept {
    const auto* right = expressionAs<BinaryExpr>(binary.right);
    const Precedence own = precedenceOf(binary.op);
    return right != nullptr && rightPrecedence(binary.op) == own && precedenceOf(right->op) == own;
}

} // namespace morquill::taskdsl::plot
