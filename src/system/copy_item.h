#pragma once

#include <string>

namespace morquill::system {

/// Copies a file, a link or a whole directory to `target`. A file replaces an existing one, a link and a
/// directory replace whatever stands there; links are copied as links, never followed. False when the source
/// does not exist, is or holds something of another kind, or anything could not be copied; the rest of a
/// directory is copied all the same, and a file that could not be copied in full is not left behind.
[[nodiscard]] bool copyItem(const std::string& source, const std::string& target);

} // namespace morquill::system
