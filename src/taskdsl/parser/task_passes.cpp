#include "taskdsl/parser/task_passes.h"

#include "support/number.h"
#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/task/mod_operation.h"
#include "taskdsl/task/when_expr.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// Keywords are unquoted where they are read and once more here. Taking off what is left until nothing is
/// keeps what the canonical writer makes of them stable.
void unquoteFully(SharedText& text) {
    for (std::string bare = readScalar(text); text != bare; bare = readScalar(text)) {
        text = bare;
    }
}

bool hasAxis(const std::vector<MatrixAxis>& axes, std::string_view key) {
    return std::any_of(axes.begin(), axes.end(), [key](const MatrixAxis& axis) { return axis.key == key; });
}

/// Makes a change to the declared tasks and to those that run, once where they are still one list.
template <class Change>
void changeTasks(TaskDocument& document, const Change& change) {
    const bool oneList = document.tasks.sharesWith(document.templateTasks);
    if (oneList) {
        document.tasks.reset();
    }
    auto& declared = document.templateTasks.edit();
    std::for_each(declared.begin(), declared.end(), change);
    if (oneList) {
        document.tasks = document.templateTasks;
    } else {
        auto& running = document.tasks.edit();
        std::for_each(running.begin(), running.end(), change);
    }
}

/// Header values of the extra files fill in tasks of the file, but are not the file's own.
void rememberOwnResources(TaskDocument& document) {
    ImplicitContent& implicit = document.implicitContent;
    if (!implicit.settings.contains("totcore") && !implicit.settings.contains("totmem")) {
        return;
    }
    for (const TaskInfo& task : document.templateTasks) {
        implicit.ownResources.push_back({task.totalCores, task.totalMemory, task.controlDeclared});
    }
}

} // namespace

void finishTask(TaskInfo& task, const std::vector<MatrixAxis>& axes, const WarningSink& warn) {
    const auto tell = [&](std::string_view text) { warn("task '" + task.name + "' " + std::string(text)); };
    unquoteFully(task.keywords);
    task.templateName = readScalar(task.templateName);
    task.runner = readScalar(task.runner);
    const bool programVaries = hasAxis(axes, "program");
    if (!programVaries && task.program == TaskProgram::gaussian && !task.args.empty() &&
        task.keywords.empty() && task.templateName.empty() && task.runner.empty() && task.body.empty()) {
        task.program = TaskProgram::xtb;
        tell("uses %args without an explicit %program; defaulting to '%program xtb'.");
    }
    const bool hasKeywords = !task.keywords.empty();
    if (task.program == TaskProgram::xtb && task.args.empty() && hasKeywords) {
        task.args = std::exchange(task.keywords, {});
        tell(
            "uses deprecated '%keywords' syntax for '%program xtb'; move command-line arguments to '%args'.");
    }
    if (task.program == TaskProgram::other && hasKeywords && !programVaries) {
        tell("uses deprecated '%keywords' syntax for '%program other'; move template selection to "
             "'%template' plus "
             "'%param'.");
    }
    if (task.program == TaskProgram::script && task.runner.empty() && hasKeywords) {
        tell("uses deprecated '%keywords' as script runner/shebang; move the runner to '%runner'.");
    }
    if (task.program != TaskProgram::xtb && !task.args.empty()) {
        tell("declares %args, but only '%program xtb' currently consumes that directive; the args will be "
             "ignored.");
    }
    if (task.program == TaskProgram::fcclasses && !hasStructuredSource(task)) {
        throw DiagnosticError(
            "task '" + task.name +
            "' uses '%program fcclasses' but does not declare a multi-line structured %source");
    }
    checkModsAgainstSources(task, Placeholders::allowed);
}

void applyHeaderMetadata(TaskDocument& document, std::string_view path, const KeySet& inherited,
                         const WarningSink& warn) {
    const auto headerValue = [&](const char* key) -> std::optional<std::int32_t> {
        const auto found = document.settings.find(key);
        if (found == document.settings.end()) {
            return std::nullopt;
        }
        const auto value = readPositiveInt(trim(found->second));
        if (!value && !inherited.contains(key)) {
            warn("task file '" + shownPath(path) + "' has invalid header metadata " + key + "='" +
                 found->second + "'; ignoring it.");
        }
        return value;
    };
    const auto cores = headerValue("totcore");
    const auto memory = headerValue("totmem");
    if (!cores && !memory) {
        return;
    }
    rememberOwnResources(document);
    changeTasks(document, [&](TaskInfo& task) {
        const bool takesCores = cores && task.totalCores <= 0;
        const bool takesMemory = memory && task.totalMemory <= 0;
        task.totalCores = takesCores ? *cores : task.totalCores;
        task.totalMemory = takesMemory ? *memory : task.totalMemory;
        // A value that was taken is positive.
        task.controlDeclared = task.controlDeclared || takesCores || takesMemory;
    });
}

void shareTaskNames(TaskDocument& document) {
    std::vector<std::string> names;
    for (const TaskInfo& task : document.tasks) {
        if (!isProvider(task)) {
            names.push_back(task.name);
        }
    }
    const Shared<std::vector<std::string>> shared(std::move(names));
    changeTasks(document, [&shared](TaskInfo& task) { task.documentTaskNames = shared; });
}

void warnAboutDeadlocks(const TaskDocument& document, std::string_view path, const WarningSink& warn) {
    std::vector<std::string> waiting;
    for (const TaskInfo& task : document.tasks) {
        if (std::any_of(task.whenEntries.begin(), task.whenEntries.end(), [](const TaskWhenEntry& entry) {
                // Few conditions hold the word at all; only those are worth a tree.
                return containsNoCase(entry.text, "allothers") && hasAllOthers(parseWhenExpr(entry.text));
            })) {
            waiting.push_back(task.name);
        }
    }
    if (waiting.size() > 1) {
        warn("potential deadlock: multiple tasks in '" + shownPath(path) +
             "' use '%when completed allothers': " + join(waiting, ", "));
    }
}

} // namespace morquill::taskdsl
