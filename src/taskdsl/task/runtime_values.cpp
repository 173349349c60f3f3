#include "taskdsl/task/runtime_values.h"

#include "support/cursor.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

ValueMap runtimePlaceholders(std::string_view rootName, std::string_view taskName,
                             std::string_view originName, std::string_view sourceName) {
    ValueMap values;
    values.emplace("rootname", rootName);
    values.emplace("taskname", taskName);
    values.emplace("inputname", std::string(rootName) + "_" + std::string(taskName));
    values.emplace("sourcename", sourceName);
    if (!originName.empty()) {
        values.emplace("originname", originName);
    }
    return values;
}

void applyRuntimePlaceholders(TaskInfo& task, const ValueMap& values) {
    for (auto* text :
         {&task.keywords, &task.args, &task.extraKeywords, &task.paramValues, &task.runner, &task.body}) {
        substituteInto(*text, values);
    }
}

std::string findKeywordValue(std::string_view text, std::string_view key) {
    // (^|[\s\r\n\t])<key>\s*=\s*("[^"]*"|'[^']*'|[^\s]+)
    for (auto at = text.find(key); at != std::string_view::npos; at = text.find(key, at + 1)) {
        if (at > 0 && !isSpace(text[at - 1])) {
            continue;
        }
        Cursor after(text, at + key.size());
        if (const auto value = takeAssignedValue(after)) {
            return std::string(unquote(*value));
        }
    }
    return {};
}

} // namespace morquill::taskdsl
