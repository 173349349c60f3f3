#pragma once

#include <string>

namespace morquill::system {

/// Copies a file, a link or a whole directory to `target`. A file takes the place of another file or a link,
/// a link and a directory that of whatever stands there, but only once the copy is whole: until then it lies
/// beside the target under the name ".mqkit-<host>-<process>-<number>". Links are copied as links, never
/// followed. False when the source does not exist, holds the target or is held by it, is or holds something
/// of another kind, or anything could not be copied; what stood at the target then stays. Where nothing
/// stood, the rest of a directory is left there. A signal that asks the program to end stops the copy, which
/// is taken away before the signal takes effect.
[[nodiscard]] bool copyItem(const std::string& source, const std::string& target);

/// Removes from a directory the unfinished copies of processes of this host that are gone, as a killed one
/// leaves them.
void removeStaleCopies(const std::string& dir);

} // namespace morquill::system
