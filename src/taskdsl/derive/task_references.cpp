#include "taskdsl/derive/task_references.h"

#include "support/match.h"
#include "taskdsl/derive/statement_parts.h"
#include "taskdsl/expr/task_names.h"

namespace morquill::taskdsl::derive {

std::set<std::string> collectDeriveTaskReferences(const DeriveSpec& spec) {
    std::set<std::string> references;
    for (const auto& statement : spec.statements) {
        forEachPart(statement,
                    Match{[&](const ExprRef& expression) { plot::addTaskNames(expression, references); },
                          [](const std::string&) {}});
        if (const auto* join = std::get_if<JoinStatement>(&statement)) {
            plot::addTaskName(join->task, references);
        } else if (const auto* from = std::get_if<FromStatement>(&statement)) {
            if (const auto* atoms = std::get_if<AtomsSource>(&from->source)) {
                plot::addTaskName(atoms->task, references);
            }
        }
    }
    return references;
}

} // namespace morquill::taskdsl::derive
