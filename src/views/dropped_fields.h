#pragma once

#include "taskdsl/task/task_document.h"

#include <cstdint>
#include <string>
#include <vector>

/// What of a task the canonical layout has no line for.
namespace morquill::views {

/// The directives of which every program prints its own few.
enum class Payload : std::uint8_t { none, keywords, extraInput, args, templateName, params, runner, body };

/// True when a task of that program prints that directive; `none` is printed by every task.
[[nodiscard]] bool printsPayload(taskdsl::TaskProgram program, Payload payload) noexcept;

/// What a rewrite drops of the task, as a user would write it ("%args", "alert false"). A legacy `%keywords`
/// that is printed as other directives is none of it.
[[nodiscard]] std::vector<std::string> droppedFields(const taskdsl::TaskInfo& task);

} // namespace morquill::views
