#pragma once

#include "taskdsl/base/diagnostic.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// Warns that a line of `LineKind::removedInclude`, trimmed, has no effect. `path` is the file that it is in.
void warnHashInclude(std::string_view trimmed, std::string_view path, const WarningSink& warn);

} // namespace morquill::taskdsl
