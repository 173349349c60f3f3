#pragma once

#include "taskdsl/base/substitute.h"

#include <string>
#include <string_view>

/// Tasks that a condition names, renamed in its text: nothing else of it changes.
namespace morquill::taskdsl {

/// Renames task references: `{{ <old>.` and `completed <old>`. The pairs are applied one after the other in
/// key order, so that a name brought in by one pair is renamed again by a later one.
[[nodiscard]] std::string rewriteWhenReferences(std::string_view text, const ValueMap& renames);

} // namespace morquill::taskdsl
