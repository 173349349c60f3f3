#pragma once

#include "taskdsl/expr/expression.h"

#include <set>
#include <string>
#include <string_view>

/// The tasks that plots and derives name in their expressions.
namespace morquill::taskdsl::plot {

/// True for a function, named in any case, whose first argument is a task.
[[nodiscard]] bool takesTask(std::string_view function);

/// Adds a task to the names. An empty name and "self", in any case, name no other task.
void addTaskName(const std::string& task, std::set<std::string>& names);

/// Adds the tasks that the expression names: those of `{{ task.key }}`, and the first argument of the
/// functions that take a task. An empty reference names none.
void addTaskNames(const ExprRef& expression, std::set<std::string>& names);

} // namespace morquill::taskdsl::plot
