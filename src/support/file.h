#pragma once

#include <optional>
#include <string>
#include <string_view>

/// File helpers that swallow file system errors: they return false or nothing, never throw.
namespace morquill {

/// The whole content of a regular file (a link to one counts), byte for byte; nothing when it cannot be
/// opened, read or held in memory. Directories, FIFOs and devices are never opened, so this cannot block.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

/// The same for a path that the user named: a FIFO or a terminal is read to its end, too, which may wait for
/// whoever writes there. Other devices are not: some never end.
[[nodiscard]] std::optional<std::string> readInputFile(const std::string& path);

/// Replaces the content of a file by one plain write over it, and makes the file when there is none; true
/// only if every byte was taken. No temporary file, no creation of parent directories; links, owner and mode
/// stay.
///
/// Nothing is lost on the way: a disk without room is found out before the first byte where the file system
/// can reserve, a write that fails puts the old bytes back (a new file is removed), and signals that end or
/// stop the program wait until the file is whole. Only a file that may be written but not read has no such
/// care. On failure `errno` has the reason.
[[nodiscard]] bool writeTextFile(const std::string& path, std::string_view text);

/// True for a regular file or a link that leads to one; false for what this user may not look at. Throws
/// `std::system_error`, whose text names the path, when the system fails to look it up.
[[nodiscard]] bool isRegularFile(const std::string& path);
/// True for a directory or a link that leads to one. Throws likewise.
[[nodiscard]] bool isDirectory(const std::string& path);

} // namespace morquill
