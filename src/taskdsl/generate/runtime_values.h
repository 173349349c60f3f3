#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/task/task_document.h"

#include <string>
#include <string_view>

/// What is known of a task only when a project makes its files.
namespace morquill::taskdsl {

/// The values of the runtime placeholders `rootname`, `taskname`, `inputname`, `originname` and `sourcename`.
/// Without an origin name there is no value for it.
[[nodiscard]] ValueMap runtimePlaceholders(std::string_view rootName, std::string_view taskName,
                                           std::string_view originName, std::string_view sourceName);

/// Puts such values into the texts of a task that may hold them.
void applyRuntimePlaceholders(TaskInfo& task, const ValueMap& values);

/// The value of `<key>=<value>` in a text, without a surrounding pair of quotes: the first place where the
/// key stands at the start or behind white space and a value follows. Empty when there is none.
[[nodiscard]] std::string findKeywordValue(std::string_view text, std::string_view key);

} // namespace morquill::taskdsl
