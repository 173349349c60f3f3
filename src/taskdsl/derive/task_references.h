#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <set>
#include <string>

namespace morquill::taskdsl::derive {

/// The names of the tasks that the block reads: sources and joins over atoms, snapshot references,
/// and the first argument of the functions that take a task. "self", in any case, is not a task name.
/// Patterns of `tasks(...)` are not resolved.
[[nodiscard]] std::set<std::string> collectDeriveTaskReferences(const DeriveSpec& spec);

} // namespace morquill::taskdsl::derive
