#include "taskdsl/task/resolved_task.h"

#include "taskdsl/task/legacy_keywords.h"

namespace morquill::taskdsl {

SharedText resolvedTemplateName(const TaskInfo& task) {
    return task.templateName.empty() ? SharedText(legacyTemplateName(task.keywords)) : task.templateName;
}

const SharedText& resolvedRunner(const TaskInfo& task) noexcept {
    return task.runner.empty() ? task.keywords : task.runner;
}

SharedText resolvedParams(const TaskInfo& task) {
    return task.paramValues.empty() ? SharedText(legacyParamValues(task.keywords)) : task.paramValues;
}

SharedText resolvedExtraInput(const TaskInfo& task) {
    if (task.program != TaskProgram::orca || task.orcaBlock.empty()) {
        return task.extraKeywords;
    }
    std::string extra = task.extraKeywords.str();
    if (!extra.empty() && extra.back() != '\n') {
        extra += '\n';
    }
    return extra.append(task.orcaBlock.view());
}

} // namespace morquill::taskdsl
