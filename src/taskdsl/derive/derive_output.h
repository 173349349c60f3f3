#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_spec.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::derive {

/// The block in canonical form, from `@derive <name>` to `@end`, a statement per line.
/// Every line begins with `indent`, statements with two blanks more, and the text ends in a line feed.
/// An expression that would be read as something else in its place is printed in parentheses. What still does
/// not read back is reported to `warnings`, each reason once: "derive '<name>' does not read back: <why>".
[[nodiscard]] std::string renderDerive(const DeriveSpec& spec, std::string_view indent,
                                       const WarningSink& warnings = {});

/// The condition on one line; the operand of `not` is printed without parentheses.
[[nodiscard]] std::string renderDeriveCondition(const DeriveCondition& condition);

} // namespace morquill::taskdsl::derive
