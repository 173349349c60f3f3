#pragma once

#include "taskdsl/base/substitute.h"

#include <string>
#include <string_view>

/// Renames tasks in the text of a condition and changes nothing else in it.
namespace morquill::taskdsl {

/// Renames task references: `{{ <old>.` and `completed <old>`. The pairs are applied one after the other in
/// key order, so that a name brought in by one pair is renamed again by a later one.
[[nodiscard]] std::string rewriteWhenReferences(std::string_view text, const ValueMap& renames);

} // namespace morquill::taskdsl
