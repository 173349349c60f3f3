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

bool hasStructuredSource(const TaskInfo& task) noexcept {
    return !task.sourceBindings.empty();
}

bool hasExternalSource(const TaskInfo& task) noexcept {
    if (isProvider(task)) {
        return false;
    }
    const bool hasSource =
        task.program == TaskProgram::fcclasses ? hasStructuredSource(task) : !task.source.empty();
    return hasSource && task.externalInput;
}

} // namespace morquill::taskdsl
