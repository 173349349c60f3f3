#include "taskdsl/derive/derive_substitute.h"

#include "support/text.h"
#include "taskdsl/derive/statement_parts.h"

#include <utility>

namespace morquill::taskdsl::derive {

namespace {

/// Only texts with an open bracket can hold a reference, and most hold none.
bool mayChange(const std::string& text) noexcept {
    return text.find('[') != std::string::npos;
}

void substitute(std::string& text, const ValueMap& values) {
    if (mayChange(text)) {
        text = substituteBrackets(text, values);
    }
}

ExprRef substituteNode(const ExprRef& expression, const ValueMap& values) {
    const auto replaced = [&](const std::string& text) { return substituteBrackets(text, values); };
    return std::visit(Match{[&](const plot::StringExpr& node) {
                                return mayChange(node.text)
                                           ? plot::makeExpression(plot::StringExpr{replaced(node.text)})
                                           : expression;
                            },
                            [&](const plot::IdentifierExpr& node) {
                                return mayChange(node.name)
                                           ? plot::makeExpression(plot::IdentifierExpr{replaced(node.name)})
                                           : expression;
                            },
                            [&](const plot::SnapshotExpr& node) {
                                return mayChange(node.task) || mayChange(node.key)
                                           ? plot::makeExpression(
                                                 plot::SnapshotExpr{replaced(node.task), replaced(node.key)})
                                           : expression;
                            },
                            [&](const plot::CallExpr& node) {
                                bool changes = mayChange(node.name);
                                for (const auto& argument : node.arguments) {
                                    changes = changes || mayChange(argument.name);
                                }
                                if (!changes) {
                                    return expression;
                                }
                                plot::CallExpr call{replaced(node.name), node.arguments};
                                for (auto& argument : call.arguments) {
                                    argument.name = replaced(argument.name);
                                }
                                return plot::makeExpression(std::move(call));
                            },
                            [&](const auto&) { return expression; }},
                      expression->node);
}

} // namespace

void substituteDerive(DeriveSpec& spec, const ValueMap& values) {
    if (values.empty()) {
        return;
    }
    const auto replace = [&](const ExprRef& node) { return substituteNode(node, values); };
    const Match part{[&](std::string& text) { substitute(text, values); },
                     [&](ExprRef& expression) {
                         if (expression) {
                             expression = plot::mapExpression(expression, replace);
                         }
                     }};
    substitute(spec.name, values);
    for (auto& statement : spec.statements) {
        forEachPart(statement, part);
    }
}

} // namespace morquill::taskdsl::derive
