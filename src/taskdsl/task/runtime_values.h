#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/task/task_document.h"

#include <string>
#include <string_view>

/// Values of a task that are known only when a project makes its files.
namespace morquill::taskdsl {

/// The values of the runtime placeholders `rootname`, `taskname`, `inputname`, `originname` and `sourcename`.
/// An empty origin name has no entry.
[[nodiscard]] ValueMap runtimePlaceholders(std::string_view rootName, std::string_view taskName,
                                           std::string_view originName, std::string_view sourceName);

/// Puts these values into the texts of a task that may hold them.
void applyRuntimePlaceholders(TaskInfo& task, const ValueMap& values);

/// The value of the first `<key>=<value>` at the start of a text or after white space, without a surrounding
/// pair of quotes; empty when there is none.
[[nodiscard]] std::string findKeywordValue(std::string_view text, std::string_view key);

} // namespace morquill::taskdsl
