#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::derive {

/// The block in canonical form, from `@derive <name>` to `@end`, a statement per line. Every line begins with
/// `indent`, statements with two blanks more, and the text ends in a line feed.
[[nodiscard]] std::string renderDerive(const DeriveSpec& spec, std::string_view indent);

/// The condition on one line. What stands behind `not` is printed without parentheses.
[[nodiscard]] std::string renderDeriveCondition(const DeriveCondition& condition);

} // namespace morquill::taskdsl::derive
