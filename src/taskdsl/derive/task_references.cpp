#include "taskdsl/derive/task_references.h"

#include "support/text.h"
#include "taskdsl/derive/statement_parts.h"

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

bool takesTask(const std::string& function) {
    return std::find(std::begin(taskFunctions), std::end(taskFunctions), toLower(function)) !=
           std::end(taskFunctions);
}

void addTask(const std::string& task, References& references) {
    if (!task.empty() && !equalsNoCase(task, "self")) {
        references.insert(task);
    }
}

/// The text of an identifier or a string; null for any other expression.
const std::string* nameOrString(const ExprRef& expression) noexcept {
    if (const auto* identifier = plot::expressionAs<plot::IdentifierExpr>(expression)) {
        return &identifier->name;
    }
    const auto* string = plot::expressionAs<plot::StringExpr>(expression);
    return string != nullptr ? &string->text : nullptr;
}

void addReferences(const ExprRef& expression, References& references) {
    std::vector<const ExprRef*> pending{&expression};
    while (!pending.empty()) {
        const ExprRef& node = *pending.back();
        pending.pop_back();
        if (!node) {
            continue;
        }
        std::visit(Match{[&](const plot::SnapshotExpr& snapshot) { addTask(snapshot.task, references); },
                         [&](const plot::CallExpr& call) {
                             // A first argument that is computed names no task, but may hold references
                             // itself.
                             bool task = takesTask(call.name);
                             for (const auto& argument : call.arguments) {
                                 const auto* name = task ? nameOrString(argument.value) : nullptr;
                                 if (name != nullptr) {
                                     addTask(*name, references);
                                 } else {
                                     pending.push_back(&argument.value);
                                 }
                                 task = false;
                             }
                         },
                         [&](const plot::UnaryExpr& unary) { pending.push_back(&unary.operand); },
                         [&](const plot::BinaryExpr& binary) {
                             pending.push_back(&binary.left);
                             pending.push_back(&binary.right);
                         },
                         [](const auto&) {}},
                   node->node);
    }
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
