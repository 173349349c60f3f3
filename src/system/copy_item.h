#pragma once

#include <string>

namespace morquill::system {

/// Copies a file, a link or a whole directory to `target`. A file takes the place of another file or a link,
/// a link and a directory that of whatever stands there, but only once the copy is whole: until then it lies
/// beside the target under a name that begins with ".mqkit-". Links are copied as links, never followed.
/// False when the source does not exist, holds the target or is held by it, is or holds something of another
/// kind, or anything could not be copied; what stood at the target then stays. Where nothing stood, the rest
/// of a directory is left there.
[[nodiscard]] bool copyItem(const std::string& source, const std::string& target);

} // namespace morquill::system
