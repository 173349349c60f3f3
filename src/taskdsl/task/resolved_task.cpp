#include "taskdsl/task/resolved_task.h"

#include "taskdsl/task/legacy_keywords.h"

namespace morquill::taskdsl {

std::string resolvedTemplateName(const TaskInfo& task) {
    return task.templateName.empty() ? legacyTemplateName(task.keywords) : task.templateName;
}

const std::string& resolvedRunner(const TaskInfo& task) noexcept {
    return task.runner.empty() ? task.keywords : task.runner;
}

std::string resolvedParams(const TaskInfo& task) {
    return task.paramValues.empty() ? legacyParamValues(task.keywords) : task.paramValues;
}

std::string resolvedExtraInput(const TaskInfo& task) {
    std::string extra = task.extraKeywords;
    if (task.program == TaskProgram::orca && !task.orcaBlock.empty()) {
        if (!extra.empty() && extra.back() != '\n') {
            extra += '\n';
        }
        extra += task.orcaBlock;
    }
    return extra;
}

} // namespace morquill::taskdsl
