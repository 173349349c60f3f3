#pragma once

#include "taskdsl/task/task_document.h"

namespace morquill::taskdsl {

/// Replaces `tasks` by the variants of `templateTasks`, combination by combination.
/// With more than one combination every task takes the suffix of its combination, and references between
/// tasks of one file follow; with one combination the names stay. Does nothing without axes or tasks.
/// Throws `DiagnosticError` for axes that do not fit together and for suffixes that collide.
void expandMatrix(TaskDocument& document);

} // namespace morquill::taskdsl
