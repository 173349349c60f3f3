#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Whole files. A file system error is reported as false or nothing; where it is thrown, the function says
/// so.
namespace morquill {

/// Returns the content of a regular file, or of one that a link leads to,
/// byte for byte; nothing when it cannot be opened, read or held in memory.
/// Directories, FIFOs and devices are never opened, so this cannot block.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

/// The same for a path that the user named: a FIFO or a terminal is read to its end as well, which may wait
/// for the writer. Other devices are not read, as some never end.
[[nodiscard]] std::optional<std::string> readInputFile(const std::string& path);

/// Overwrites a file in place, or creates it; true only when every byte was written, otherwise `errno` has
/// the reason. There is no temporary file, no parent directory is created, and links, owner and mode stay.
///
/// Nothing is lost on the way: where the file system can reserve room, a full disk is
/// noticed before the first byte; a write that fails puts the old bytes back (a new
/// file is removed); and signals that end or stop the program wait until the file is
/// whole. Only a file that may be written but not read lacks this protection.
[[nodiscard]] bool writeTextFile(const std::string& path, std::string_view text);

/// True for a regular file or a link that leads to one; false also when the system fails to look it up.
[[nodiscard]] bool isRegularFile(const std::string& path);
/// True for a directory or a link that leads to one; false likewise.
[[nodiscard]] bool isDirectory(const std::string& path);

/// `isRegularFile` for workflows in which a failing disk must not pass for a missing file: false for what this
/// user may not look at, but throws `std::system_error`, whose text names the path, when the system fails to
/// look it up.
[[nodiscard]] bool lookUpRegularFile(const std::string& path);
/// `isDirectory`, likewise.
[[nodiscard]] bool lookUpDirectory(const std::string& path);

} // namespace morquill
