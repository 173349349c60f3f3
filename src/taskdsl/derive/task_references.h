#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <set>
#include <string>
#include <string_view>

namespace morquill::taskdsl::derive {

/// The names of the tasks that the block reads: sources and joins over atoms, snapshot references, and the
/// first argument of the functions that take a task. "self", in any case, is no task name. Patterns of
/// `tasks(...)` are not resolved.
[[nodiscard]] std::set<std::string> collectDeriveTaskReferences(const DeriveSpec& spec);

/// True for a function, named in any case, whose first argument is a task.
[[nodiscard]] bool takesTask(std::string_view function);

} // namespace morquill::taskdsl::derive
