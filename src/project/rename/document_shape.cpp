#include "project/rename/document_shape.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/source_spec.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <variant>

namespace morquill::project {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;
using taskdsl::TaskWhenExpr;

namespace {

/// True when two conditions are built alike; nesting is bounded, see `maxWhenNesting`.
bool isBuiltAlike(const TaskWhenExpr& before, const TaskWhenExpr& after) {
    if (before.node.index() != after.node.index()) {
        return false;
    }
    if (const auto* completed = std::get_if<taskdsl::WhenCompleted>(&before.node)) {
        return completed->operand.empty() == std::get<taskdsl::WhenCompleted>(after.node).operand.empty();
    }
    const auto* group = std::get_if<taskdsl::WhenGroup>(&before.node);
    if (group == nullptr) {
        return true;
    }
    const auto& other = std::get<taskdsl::WhenGroup>(after.node);
    return group->op == other.op &&
           std::equal(group->children.begin(), group->children.end(), other.children.begin(),
                      other.children.end(),
                      [](const auto& left, const auto& right) { return isBuiltAlike(*left, *right); });
}

/// True when both conditions wait alike; one that waits for all others names no task.
bool waitsAlike(const taskdsl::TaskWhenEntry& before, const taskdsl::TaskWhenEntry& after) {
    try {
        const auto left = taskdsl::parseWhenExpr(before.text);
        const auto right = taskdsl::parseWhenExpr(after.text);
        return isBuiltAlike(left, right) && hasAllOthers(left) == hasAllOthers(right);
    } catch (const taskdsl::DiagnosticError&) {
        return true; // nested too deep to be read at all; a name changes nothing about that
    }
}

/// True when a task depends on as much before as after.
bool dependsAlike(const TaskInfo& before, const TaskInfo& after) {
    return sourceTasks(before).size() == sourceTasks(after).size() &&
           sourceBindings(before).size() == sourceBindings(after).size() &&
           before.guessSourceTask.empty() == after.guessSourceTask.empty() &&
           std::equal(before.whenEntries.begin(), before.whenEntries.end(), after.whenEntries.begin(),
                      after.whenEntries.end(), waitsAlike);
}

} // namespace

bool hasSameShape(const TaskDocument& before, const TaskDocument& after) {
    return before.includedFiles == after.includedFiles && before.plots.size() == after.plots.size() &&
           before.derives.size() == after.derives.size() &&
           std::equal(before.tasks.begin(), before.tasks.end(), after.tasks.begin(), after.tasks.end(),
                      dependsAlike);
}

} // namespace morquill::project
