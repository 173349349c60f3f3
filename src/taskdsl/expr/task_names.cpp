#include "taskdsl/expr/task_names.h"

#include "support/text.h"
#include "taskdsl/expr/expression_walk.h"

#include <string_view>

namespace morquill::taskdsl::plot {

namespace {

/// Functions whose first argument is a task.
constexpr std::string_view taskFunctions[] = {
    "energy",     "scf_energy", "correlated_energy", "single_point", "free_energy", "gibbs_energy",
    "gibbs_corr", "zpe",        "thermal_corr",      "nimag",        "imag_freq",   "kv",
    "result"};

/// The task that the node names: `{{ task.key }}`, or the first argument of a function of tasks. A first
/// argument that is computed names no task, but may hold references itself.
void addNameOf(const PlotExpression& node, std::set<std::string>& names) {
    if (const auto* snapshot = std::get_if<SnapshotExpr>(&node.node)) {
        addTaskName(snapshot->task, names);
        return;
    }
    const auto* call = std::get_if<CallExpr>(&node.node);
    if (call == nullptr || call->arguments.empty() || !takesTask(call->name)) {
        return;
    }
    if (const auto* name = nameOrString(call->arguments.front().value)) {
        addTaskName(*name, names);
    }
}

} // namespace

bool takesTask(std::string_view function) {
    return std::find(std::begin(taskFunctions), std::end(taskFunctions), toLower(function)) !=
           std::end(taskFunctions);
}

void addTaskName(const std::string& task, std::set<std::string>& names) {
    if (!task.empty() && !equalsNoCase(task, "self")) {
        names.insert(task);
    }
}

void addTaskNames(const ExprRef& expression, std::set<std::string>& names) {
    forEachNode(expression, [&](const PlotExpression& node) { addNameOf(node, names); });
}

} // namespace morquill::taskdsl::plot
