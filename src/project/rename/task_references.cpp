#include "project/rename/task_references.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/task_references.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <string_view>
#include <variant>

namespace morquill::project {

namespace {

using taskdsl::TaskInfo;

/// The file of the last directive of that name, which is the one that counts; that of the header without one.
std::string fileOf(const TaskInfo& task, std::string_view directive) {
    const auto& directives = *task.directives;
    const auto found = std::find_if(directives.rbegin(), directives.rend(),
                                    [&](const auto& written) { return written.name == directive; });
    return found == directives.rend() ? task.headerSpan.path.str() : found->span.path.str();
}

void addTask(ReferencePlace& place, std::string_view name) {
    if (!name.empty()) {
        place.references.insert({ReferenceForm::task, std::string(name)});
    }
}

ReferencePlace referencesOfSource(const TaskInfo& task) {
    ReferencePlace place{fileOf(task, "source"), {}};
    for (const auto& name : sourceTasks(task)) {
        addTask(place, name);
    }
    for (const auto& binding : sourceBindings(task)) {
        addTask(place, binding.sourceTask);
    }
    return place;
}

ReferencePlace referencesOfCondition(const taskdsl::TaskWhenEntry& entry) {
    ReferencePlace place{entry.span.path.str(), {}};
    try {
        const auto condition = taskdsl::parseWhenExpr(entry.text);
        for (const auto& target : taskdsl::collectCompletedTargets(condition)) {
            addTask(place, target);
        }
        for (const auto& text : taskdsl::collectPlaceholders(condition)) {
            place.references.insert({ReferenceForm::field, text});
        }
    } catch (const taskdsl::DiagnosticError&) {
        // nested too deep to be read at all
    }
    return place;
}

ReferencePlace referencesOfPlot(const taskdsl::plot::PlotSpec& plot) {
    ReferencePlace place{plot.span.path.str(), {}};
    addTask(place, plot.sourceArgument);
    std::visit(
        [&](const auto& data) {
            if constexpr (requires { data.columns.front().task; }) {
                for (const auto& column : data.columns) {
                    addTask(place, column.task);
                }
            }
        },
        plot.data);
    return place;
}

ReferencePlace referencesOfDerive(const taskdsl::DeriveBlock& block) {
    ReferencePlace place{block.captured.span.path.str(), {}};
    for (const auto& name : taskdsl::derive::collectDeriveTaskReferences(block.spec)) {
        addTask(place, name);
    }
    return place;
}

} // namespace

std::vector<ReferencePlace> collectTaskReferences(const taskdsl::TaskDocument& document) {
    std::vector<ReferencePlace> places;
    for (const auto& task : document.templateTasks) {
        places.push_back(referencesOfSource(task));
        places.push_back({fileOf(task, "control"), {}});
        addTask(places.back(), task.guessSourceTask);
        places.push_back({fileOf(task, "interface"), {}});
        addTask(places.back(), task.interfaceProvider);
        for (const auto& entry : task.whenEntries) {
            places.push_back(referencesOfCondition(entry));
        }
        for (const auto& plot : task.plots) {
            places.push_back(referencesOfPlot(plot));
        }
    }
    for (const auto& plot : document.plots) {
        places.push_back(referencesOfPlot(plot));
    }
    for (const auto& block : document.derives) {
        places.push_back(referencesOfDerive(block));
    }
    return places;
}

} // namespace morquill::project
