#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// File helpers that swallow file system errors: they answer false, nothing or an empty list, never throw.
namespace morquill {

/// The whole content of a regular file (a link to one counts), byte for byte; nothing when it cannot be
/// opened or read. Directories, FIFOs and devices are never opened, so this cannot block.
[[nodiscard]] std::optional<std::string> readTextFile(const std::string& path);

/// The same for a path that the user named: a FIFO or a terminal is read to its end, too, which may wait for
/// whoever writes there. Other devices are not: some never end.
[[nodiscard]] std::optional<std::string> readInputFile(const std::string& path);

/// One plain open, truncating write and close; true only if every byte was taken and the close succeeded.
/// No temporary file, no backup, no creation of parent directories.
[[nodiscard]] bool writeTextFile(const std::string& path, std::string_view text);

/// Replaces the content of a file in place and cuts off what is left of a longer one; makes the file when
/// there is none. Unlike truncating first, a disk that is full before the first byte leaves the old content,
/// others never see an empty file, and file systems that guard against that need not wait for the disk at
/// every close.
[[nodiscard]] bool overwriteTextFile(const std::string& path, std::string_view text);

/// True for a regular file or a link that leads to one.
[[nodiscard]] bool isRegularFile(const std::string& path);
/// True for a directory or a link that leads to one.
[[nodiscard]] bool isDirectory(const std::string& path);

/// The names in a directory without "." and "..", in ascending byte order; empty when it cannot be read.
[[nodiscard]] std::vector<std::string> listDirectoryEntries(const std::string& path);

/// The weakly canonical form of a path, or its lexically normal form when the file system reports an error.
[[nodiscard]] std::string normalisedPath(const std::string& path);

} // namespace morquill
