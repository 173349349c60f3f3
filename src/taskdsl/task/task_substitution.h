#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/task/task_document.h"

/// `[key]` references in the fields of tasks.
namespace morquill::taskdsl {

/// True when some field that substitution looks at holds a `[`.
[[nodiscard]] bool holdsBrackets(const TaskInfo& task) noexcept;

/// Puts values into the fields of a task. A structured source keeps its shape; mods are read again.
/// It is the last substitution, so a `frame` must have become a number. Throws `DiagnosticError` when a
/// source or a mod can no longer be read.
void substituteTask(TaskInfo& task, const ValueMap& values);

} // namespace morquill::taskdsl
