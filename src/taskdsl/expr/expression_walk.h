#pragma once

#include "taskdsl/expr/expression.h"

#include <utility>
#include <variant>
#include <vector>

/// Walks over the nodes of an expression. Not for use outside this room.
namespace morquill::taskdsl::derive {

/// Calls `visit` with every node of the tree, from left to right, a node before those below it. Works without
/// recursion, since a sum leans to the left with a level per term.
template <class Visit>
void forEachNode(const plot::ExprRef& expression, const Visit& visit) {
    const plot::PlotExpression* node = expression.get();
    std::vector<const plot::PlotExpression*> pending; // the next node is the last
    while (node != nullptr) {
        visit(*node);
        const plot::PlotExpression* next = nullptr;
        if (const auto* binary = std::get_if<plot::BinaryExpr>(&node->node)) {
            pending.push_back(binary->right.get());
            next = binary->left.get();
        } else if (const auto* unary = std::get_if<plot::UnaryExpr>(&node->node)) {
            next = unary->operand.get();
        } else if (const auto* call = std::get_if<plot::CallExpr>(&node->node)) {
            for (auto it = call->arguments.rbegin(); it != call->arguments.rend(); ++it) {
                pending.push_back(it->value.get());
            }
        }
        while (next == nullptr && !pending.empty()) {
            next = pending.back();
            pending.pop_back();
        }
        node = next;
    }
}

/// True when the expression is or holds a call.
[[nodiscard]] inline bool callsFunction(const plot::ExprRef& expression) {
    bool calls = false;
    forEachNode(expression, [&](const plot::PlotExpression& node) {
        calls = calls || std::holds_alternative<plot::CallExpr>(node.node);
    });
    return calls;
}

} // namespace morquill::taskdsl::derive
