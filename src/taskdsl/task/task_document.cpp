#include "taskdsl/task/task_document.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"

#include <array>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::array<std::string_view, 12> programNames{"gaussian", "orca",      "gamess", "xtb",
                                                        "mrcc",     "maple",     "amesp",  "bdf",
                                                        "mopac",    "fcclasses", "other",  "script"};

constexpr std::string_view supportedPrograms =
    "gaussian, orca, gamess, xtb, mrcc, maple, amesp, bdf, mopac, fcclasses, other, script";

/// Removes the entries of a map whose keys are in the set.
template <class Map>
void eraseKeys(Map& map, const KeySet& keys) {
    for (const auto& key : keys) {
        if (const auto found = map.find(key); found != map.end()) {
            map.erase(found);
        }
    }
}

template <class T>
void eraseFirst(std::vector<T>& list, std::size_t count) {
    list.erase(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(count));
}

/// The tasks that run without the variants of the first `count` of `declared` tasks: every combination of the
/// matrix has one variant of each declared task, in their order.
std::vector<TaskInfo> withoutVariants(std::vector<TaskInfo> tasks, std::size_t declared, std::size_t count) {
    std::vector<TaskInfo> kept;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        if (i % declared >= count) {
            kept.push_back(std::move(tasks[i]));
        }
    }
    return kept;
}

} // namespace

std::string_view programName(TaskProgram program) noexcept {
    const auto number = static_cast<std::size_t>(program);
    return number < programNames.size() ? programNames[number] : programNames[0];
}

bool parseProgramName(std::string_view text, TaskProgram& program) {
    text = trim(text);
    for (std::size_t i = 0; i < programNames.size(); ++i) {
        if (equalsNoCase(text, programNames[i])) {
            program = static_cast<TaskProgram>(i);
            return true;
        }
    }
    return false;
}

TaskProgram requireProgram(std::string_view value, std::string_view location) {
    TaskProgram program{};
    if (parseProgramName(value, program)) {
        return program;
    }
    std::string message;
    if (!location.empty()) {
        message.append(location).append(": ");
    }
    message.append("unknown %program '").append(value).append("'; supported values are ");
    throw DiagnosticError(message.append(supportedPrograms));
}

TaskInfo::TaskInfo(std::string taskName, TaskProgram taskProgram)
    : name(std::move(taskName)), program(taskProgram), templateTaskName(name) {}

bool isProvider(const TaskInfo& task) noexcept {
    return task.interfaceMode == TaskInterfaceMode::provider;
}

bool isConsumer(const TaskInfo& task) noexcept {
    return task.interfaceMode == TaskInterfaceMode::consume && !task.interfaceProvider.empty();
}

bool hasExternalSource(const TaskInfo& task) noexcept {
    if (isProvider(task)) {
        return false;
    }
    const bool hasSource =
        task.program == TaskProgram::fcclasses ? hasStructuredSource(task) : hasSimpleSource(task);
    return hasSource && task.externalInput;
}

std::vector<std::string> whenConditions(const TaskInfo& task) {
    std::vector<std::string> texts;
    texts.reserve(task.whenEntries.size());
    for (const auto& entry : task.whenEntries) {
        texts.push_back(entry.text);
    }
    return texts;
}

TaskDocument withoutImplicitContent(TaskDocument document) {
    const ImplicitContent implicit = std::exchange(document.implicitContent, {});
    eraseKeys(document.settings, implicit.settings);
    eraseKeys(document.defines, implicit.defines);
    eraseKeys(document.matrixValues, implicit.axes);
    std::erase_if(document.matrixAxes,
                  [&implicit](const MatrixAxis& axis) { return implicit.axes.contains(axis.key); });
    eraseFirst(document.plots, implicit.plots);
    eraseFirst(document.derives, implicit.derives);
    if (implicit.tasks > 0) {
        const bool oneList = document.tasks.sharesWith(document.templateTasks);
        const std::size_t declared = document.templateTasks.size();
        if (!oneList) {
            document.tasks = withoutVariants(std::move(document.tasks.edit()), declared, implicit.tasks);
        } else {
            document.tasks.reset();
        }
        eraseFirst(document.templateTasks.edit(), implicit.tasks);
        if (oneList) {
            document.tasks = document.templateTasks;
        }
    }
    return document;
}

} // namespace morquill::taskdsl
