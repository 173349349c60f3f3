#pragma once

#include "taskdsl/derive/formulas.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace morquill::taskdsl::derive {

/// The deepest nesting of parentheses and `not` in a condition. Chains of `and` and of `or` have any length.
inline constexpr std::size_t maxConditionDepth = 1000;

/// Reads a condition:
///
///     condition  := conjunction { "or" conjunction }
///     conjunction := operand { "and" operand }
///     operand    := "not " operand | "(" condition ")" | comparison
///     comparison := expression [ operator expression | "in" list | "matches" expression ]
///
/// Chains lean to the right. The expressions are expanded. Throws `DiagnosticError` with the span
/// of the statement.
[[nodiscard]] DeriveCondition parseDeriveCondition(std::string_view text, DeriveSurface& surface,
                                                   const SourceSpan& span);

} // namespace morquill::taskdsl::derive
