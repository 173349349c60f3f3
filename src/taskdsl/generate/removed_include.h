#pragma once

#include "taskdsl/base/diagnostic.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// True for the removed form of an include: `#INCLUDE` in any case, followed by white space or the end. Takes
/// a raw line without surrounding blanks.
[[nodiscard]] bool isHashInclude(std::string_view trimmed) noexcept;

/// Tells that such a line has no effect. `path` is the file that it stands in.
void warnHashInclude(std::string_view trimmed, const std::string& path, const WarningSink& warn);

} // namespace morquill::taskdsl
