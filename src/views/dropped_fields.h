#pragma once

#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <string>
#include <vector>

/// What the canonical layout has no line for.
namespace morquill::views {

/// The directives that are printed only for some programs.
enum class Payload : std::uint8_t { none, keywords, extraInput, args, templateName, params, runner, body };

/// True when the directive is printed for tasks of that program; `none` is printed for every task.
[[nodiscard]] bool printsPayload(taskdsl::TaskProgram program, Payload payload) noexcept;

/// Returns what a rewrite drops of the task, as a user would write it ("%args", "alert false"). A legacy
/// `%keywords` that is printed as other directives does not count.
[[nodiscard]] std::vector<std::string> droppedFields(const taskdsl::TaskInfo& task);

} // namespace morquill::views
