#pragma once

#include "taskdsl/task/task_document.h"

/// What the fields of a task mean together, whatever the age of its file.
namespace morquill::taskdsl {

/// The template of a task of `%program other`: its `%template`, else the job that older files keep in
/// `%keywords`; may be empty.
[[nodiscard]] SharedText resolvedTemplateName(const TaskInfo& task);

/// The runner of a script task: its `%runner`, else what older files keep in `%keywords`; may be empty.
[[nodiscard]] const SharedText& resolvedRunner(const TaskInfo& task) noexcept;

/// The parameters of a task of `%program other`: its `%param`, else what older files keep in `%keywords`.
[[nodiscard]] SharedText resolvedParams(const TaskInfo& task);

/// The `%extrainput` text of a task; that of an ORCA task ends in its own block.
[[nodiscard]] SharedText resolvedExtraInput(const TaskInfo& task);

} // namespace morquill::taskdsl
