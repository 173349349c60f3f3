#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <variant>

/// The parts of a statement, for passes that treat all statements alike. Not for use outside this room.
namespace morquill::taskdsl::derive {

/// Calls `part` with every expression of the condition, left to right.
template <class Condition, class Part>
void forEachConditionPart(Condition& condition, const Part& part) {
    auto* node = &condition;
    for (;;) {
        part(node->left);
        part(node->right);
        for (auto& value : node->list) {
            part(value);
        }
        if (node->children.empty()) {
            return;
        }
        if (node->children.size() > 1) {
            forEachConditionPart(node->children.front(), part);
        }
        node = &node->children.back();
    }
}

/// Calls `part`, which takes a text or an `ExprRef`, with every text and expression of the statement. Some of
/// the expressions may be empty references. The fields are found by their names, so that an alternative takes
/// part by having them.
template <class Statement, class Part>
void forEachPart(Statement& statement, const Part& part) {
    const auto each = [&](auto& record) {
        // clang-format off
        if constexpr (requires { record.name; }) { part(record.name); }
        if constexpr (requires { record.label; }) { part(record.label); }
        if constexpr (requires { record.target; }) { part(record.target); }
        if constexpr (requires { record.property; }) { part(record.property); }
        if constexpr (requires { record.condition; }) { forEachConditionPart(record.condition, part); }
        if constexpr (requires { record.expression; }) { part(record.expression); }
        if constexpr (requires { record.value; }) { part(record.value); }
        if constexpr (requires { record.message; }) { part(record.message); }
        if constexpr (requires { record.unit; }) { part(record.unit); }
        if constexpr (requires { record.task; }) { part(record.task); }
        if constexpr (requires { record.alias; }) { part(record.alias); }
        if constexpr (requires { record.key; }) { part(record.key); }
        if constexpr (requires { record.path; }) { part(record.path); }
        if constexpr (requires { record.program; }) { part(record.program); }
        if constexpr (requires { record.templateName; }) { part(record.templateName); }
        if constexpr (requires { record.derive; }) { part(record.derive); }
        if constexpr (requires { record.table; }) { part(record.table); }
        // clang-format on
        if constexpr (requires { record.patterns; }) {
            for (auto& pattern : record.patterns) {
                part(pattern);
            }
        }
    };
    std::visit(
        [&](auto& record) {
            each(record);
            if constexpr (requires { record.keys; }) {
                for (auto& key : record.keys) {
                    each(key);
                }
            }
            if constexpr (requires { record.source; }) {
                std::visit(each, record.source);
            }
        },
        statement);
}

} // namespace morquill::taskdsl::derive
