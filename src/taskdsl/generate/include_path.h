#pragma once

#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// The file that an include target names, as an absolute, normalised path; it need not exist. A name in `<`
/// and
/// `>` is first looked for in the directories of `MORQUILL_MQLIB_PATH`. Other relative names, and such a name
/// that is not found there, are taken from the directory of `baseFile`, or from the current directory when
/// there is none. Empty for an empty name.
[[nodiscard]] std::string resolveIncludePath(std::string_view name, const std::string& baseFile);

} // namespace morquill::taskdsl
