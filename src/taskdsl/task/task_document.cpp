#include "taskdsl/task/task_document.h"

#include "support/text.h"
#include "support/word_table.h"
#include "taskdsl/base/diagnostic.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr auto programWords = wordTable<TaskProgram>({
    {"gaussian", TaskProgram::gaussian},
    {"orca", TaskProgram::orca},
    {"gamess", TaskProgram::gamess},
    {"xtb", TaskProgram::xtb},
    {"mrcc", TaskProgram::mrcc},
    {"maple", TaskProgram::maple},
    {"amesp", TaskProgram::amesp},
    {"bdf", TaskProgram::bdf},
    {"mopac", TaskProgram::mopac},
    {"fcclasses", TaskProgram::fcclasses},
    {"other", TaskProgram::other},
    {"script", TaskProgram::script},
});

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

/// The declared tasks with what they had of their own in place of header values from the extra files.
void takeBackResources(TaskDocument& document, const ImplicitContent& implicit) {
    if (implicit.ownResources.empty()) {
        return;
    }
    const bool oneList = document.tasks.sharesWith(document.templateTasks);
    auto& declared = document.templateTasks.edit();
    for (std::size_t i = 0; i < declared.size() && i < implicit.ownResources.size(); ++i) {
        const TaskResources& own = implicit.ownResources[i];
        if (implicit.settings.contains("totcore")) {
            declared[i].totalCores = own.totalCores;
        }
        if (implicit.settings.contains("totmem")) {
            declared[i].totalMemory = own.totalMemory;
        }
        declared[i].controlDeclared = own.controlDeclared || declared[i].totalCores > own.totalCores ||
                                      declared[i].totalMemory > own.totalMemory;
    }
    if (oneList) {
        document.tasks = document.templateTasks;
    }
}

} // namespace

std::string_view programName(TaskProgram program) noexcept {
    return programWords.nameOf(program);
}

std::optional<TaskProgram> parseProgramName(std::string_view text) noexcept {
    return programWords.find(trim(text));
}

TaskProgram requireProgram(std::string_view value, std::string_view location) {
    if (const auto program = parseProgramName(value)) {
        return *program;
    }
    std::string message;
    if (!location.empty()) {
        message.append(location).append(": ");
    }
    message.append("unknown %program '").append(value).append("'; supported values are ");
    std::string_view separator;
    for (const auto& row : programWords) {
        message.append(separator).append(row.word);
        separator = ", ";
    }
    throw DiagnosticError(std::move(message));
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

const TaskDirective* firstDirective(const TaskInfo& task, std::string_view name) noexcept {
    const auto& directives = task.directives.get();
    const auto found =
        std::find_if(directives.begin(), directives.end(),
                     [name](const TaskDirective& directive) { return directive.name == name; });
    return found == directives.end() ? nullptr : &*found;
}

std::vector<std::string> whenConditions(const TaskInfo& task) {
    std::vector<std::string> texts;
    texts.reserve(task.whenEntries.size());
    for (const auto& entry : task.whenEntries) {
        texts.push_back(entry.text);
    }
    return texts;
}

const Shared<std::vector<TaskInfo>>& declaredTasks(const TaskDocument& document) noexcept {
    return document.templateTasks.empty() ? document.tasks : document.templateTasks;
}

TaskDocument withoutImplicitContent(TaskDocument document) {
    const ImplicitContent implicit = std::exchange(document.implicitContent, {});
    eraseKeys(document.settings, implicit.settings);
    eraseKeys(document.defines, implicit.defines);
    eraseKeys(document.matrixValues, implicit.axes);
    std::erase_if(document.matrixAxes,
                  [&implicit](const MatrixAxis& axis) { return implicit.axes.contains(axis.key); });
    takeBackResources(document, implicit);
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
