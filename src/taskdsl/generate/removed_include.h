#pragma once

#include "taskdsl/base/diagnostic.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// Warns that a trimmed line of `LineKind::removedInclude` in the file `path` has no effect.
void warnHashInclude(std::string_view trimmed, std::string_view path, const WarningSink& warn);

} // namespace morquill::taskdsl
