#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/expr/expression.h"

namespace morquill::taskdsl::plot {

/// The expression with the values in place of `[key]` in its names and texts. Trees in which nothing changes
/// are shared, not copied.
[[nodiscard]] ExprRef substituteExpression(const ExprRef& expression, const ValueMap& values);

} // namespace morquill::taskdsl::plot
