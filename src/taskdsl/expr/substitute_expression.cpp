#include "taskdsl/expr/substitute_expression.h"

#include "support/match.h"

#include <string>
#include <utility>
#include <variant>

namespace morquill::taskdsl::plot {

ExprRef substituteExpression(const ExprRef& expression, const ValueMap& values) {
    const auto substitute = [&values](std::string& text) { return substituteInto(text, values); };
    return mapExpression(expression, [&](const ExprRef& node) -> ExprRef {
        auto copy = node->node;
        const bool changed =
            std::visit(Match{[&](StringExpr& string) { return substitute(string.text); },
                             [&](IdentifierExpr& identifier) { return substitute(identifier.name); },
                             [&](SnapshotExpr& snapshot) {
                                 const bool task = substitute(snapshot.task);
                                 return substitute(snapshot.key) || task;
                             },
                             [&](CallExpr& call) {
                                 bool any = substitute(call.name);
                                 for (auto& argument : call.arguments) {
                                     any = substitute(argument.name) || any;
                                 }
                                 return any;
                             },
                             [](auto&) { return false; }},
                       copy);
        return changed ? makeExpression(std::move(copy)) : node;
    });
}

} // namespace morquill::taskdsl::plot
