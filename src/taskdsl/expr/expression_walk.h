#pragma once

#include "taskdsl/expr/expression.h"

#include <algorithm>
#include <cstddef>
#include <variant>
#include <vector>

/// Walks over the nodes of an expression, all without recursion: a sum leans to the left with a level per
/// term.
namespace morquill::taskdsl::plot {

/// The filter of a walk that skips no argument of a call.
struct EveryArgument {
    [[nodiscard]] bool operator()(const PlotCallArgument& /*argument*/) const noexcept { return true; }
};

/// Calls `visit` with the reference to each child of the node, from left to right; arguments of a call that
/// `takes` refuses are skipped. A reference may be empty.
template <class Node, class Visit, class Takes = EveryArgument>
void forEachChild(Node& node, const Visit& visit, const Takes& takes = {}) {
    if (auto* call = std::get_if<CallExpr>(&node)) {
        for (auto& argument : call->arguments) {
            if (takes(argument)) {
                visit(argument.value);
            }
        }
    } else if (auto* unary = std::get_if<UnaryExpr>(&node)) {
        visit(unary->operand);
    } else if (auto* binary = std::get_if<BinaryExpr>(&node)) {
        visit(binary->left);
        visit(binary->right);
    }
}

/// Calls `visit` with every node of the tree, a node before those below it and from left to right. Arguments
/// that `takes` refuses are skipped with everything below them.
template <class Visit, class Takes = EveryArgument>
void forEachNode(const ExprRef& expression, const Visit& visit, const Takes& takes = {}) {
    std::vector<const PlotExpression*> pending; // the next node is the last
    const PlotExpression* node = expression.get();
    while (node != nullptr) {
        visit(*node);
        const auto first = static_cast<std::ptrdiff_t>(pending.size());
        forEachChild(
            node->node,
            [&](const ExprRef& child) {
                if (child) {
                    pending.push_back(child.get());
                }
            },
            takes);
        std::reverse(pending.begin() + first, pending.end());
        node = pending.empty() ? nullptr : pending.back();
        if (node != nullptr) {
            pending.pop_back();
        }
    }
}

/// True when the expression is or holds a call.
[[nodiscard]] inline bool callsFunction(const ExprRef& expression) {
    bool calls = false;
    forEachNode(expression, [&](const PlotExpression& node) {
        calls = calls || std::holds_alternative<CallExpr>(node.node);
    });
    return calls;
}

} // namespace morquill::taskdsl::plot
