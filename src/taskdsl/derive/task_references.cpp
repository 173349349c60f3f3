#include "taskdsl/derive/task_references.h"

#include "support/text.h"
#include "taskdsl/derive/statement_parts.h"
#include "taskdsl/expr/expression_walk.h"

#include <algorithm>
#include <iterator>

namespace morquill::taskdsl::derive {

namespace {

using References = std::set<std::string>;

/// Functions whose first argument is a task.
constexpr std::string_view taskFunctions[] = {
    "energy",     "scf_energy", "correlated_energy", "single_point", "free_energy", "gibbs_energy",
    "gibbs_corr", "zpe",        "thermal_corr",      "nimag",        "imag_freq",   "kv",
    "result"};

} // namespace

bool takesTask(std::string_view function) {
    return std::find(std::begin(taskFunctions), std::end(taskFunctions), toLower(function)) !=
           std::end(taskFunctions);
}

namespace {

void addTask(const std::string& task, References& references) {
    if (!task.empty() && !equalsNoCase(task, "self")) {
        references.insert(task);
    }
}

/// The task that the node names: `{{ task.key }}`, or the first argument of a function of tasks. A first
/// argument that is computed names no task, but may hold references itself.
void addReferencesOf(const plot::PlotExpression& node, References& references) {
    if (const auto* snapshot = std::get_if<plot::SnapshotExpr>(&node.node)) {
        addTask(snapshot->task, references);
        return;
    }
    const auto* call = std::get_if<plot::CallExpr>(&node.node);
    if (call == nullptr || call->arguments.empty() || !takesTask(call->name)) {
        return;
    }
    if (const auto* name = plot::nameOrString(call->arguments.front().value)) {
        addTask(*name, references);
    }
}

void addReferences(const ExprRef& expression, References& references) {
    plot::forEachNode(expression,
                      [&](const plot::PlotExpression& node) { addReferencesOf(node, references); });
}

} // namespace

std::set<std::string> collectDeriveTaskReferences(const DeriveSpec& spec) {
    References references;
    for (const auto& statement : spec.statements) {
        forEachPart(statement,
                    Match{[&](const ExprRef& expression) { addReferences(expression, references); },
                          [](const std::string&) {}});
        if (const auto* join = std::get_if<JoinStatement>(&statement)) {
            addTask(join->task, references);
        } else if (const auto* from = std::get_if<FromStatement>(&statement)) {
            if (const auto* atoms = std::get_if<AtomsSource>(&from->source)) {
                addTask(atoms->task, references);
            }
        }
    }
    return references;
}

} // namespace morquill::taskdsl::derive
