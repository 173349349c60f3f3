#pragma once

#include <string>

namespace morquill::system {

/// Copies a file, a link or a whole directory to `target`; links are copied as links, never followed. A file
/// replaces another file or a link; a link or a directory replaces whatever is there. The target is replaced
/// only once the copy is whole: until then, the copy lies beside it as ".mqkit-<host>-<process>-<number>".
///
/// Returns false when the source does not exist, contains the target or is contained in it, is or contains
/// something of another kind, or when anything could not be copied. The old target then stays; where there
/// was none, as much of a directory as could be copied is left there. A signal that asks the program to end
/// stops the copy, which is removed before the signal takes effect.
[[nodiscard]] bool copyItem(const std::string& source, const std::string& target);

/// Removes from a directory the unfinished copies of this
/// host's processes that no longer run, such as killed ones.
void removeStaleCopies(const std::string& dir);

} // namespace morquill::system
