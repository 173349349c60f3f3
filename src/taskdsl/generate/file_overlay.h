#pragma once

#include <functional>
#include <optional>
#include <string>

namespace morquill::taskdsl {

/// The text that counts for the file of a path instead of the one on the disk: an editor's unsaved text.
/// Nothing where the disk counts. Empty: the disk always counts.
using FileOverlay = std::function<std::optional<std::string>(const std::string& path)>;

} // namespace morquill::taskdsl
