#pragma once

#include "taskdsl/task/task_document.h"

namespace morquill::project {

/// True when two documents with as many tasks differ at most in names: they include the same files, have as
/// many plots and derives, and each task depends on as much in both. A new name like `origin` or `and` is
/// read as something other than a name.
[[nodiscard]] bool hasSameShape(const taskdsl::TaskDocument& before, const taskdsl::TaskDocument& after);

} // namespace morquill::project
