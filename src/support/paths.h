#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Paths as texts, and the directory listings that the project workflows share. Text is bytes; nothing
/// throws.
namespace morquill {

/// The absolute, lexically normal form of a path with its trailing slash, if it has one.
[[nodiscard]] std::string absolutePath(std::string_view path);
/// The same without a trailing slash; empty gives the current directory.
[[nodiscard]] std::string absoluteLocation(std::string_view path);
/// `dir` and `name` with one slash between them; a `name` with a leading slash does not leave `dir`.
[[nodiscard]] std::string joinPath(std::string_view dir, std::string_view name);
/// The last component of a path.
[[nodiscard]] std::string baseName(std::string_view path);
/// The path without its last component; "/" for the top.
[[nodiscard]] std::string parentPath(std::string_view path);
/// The extension with its dot as the file system library sees it: a leading dot of the name begins none.
[[nodiscard]] std::string_view extensionOf(std::string_view name) noexcept;
/// The last component without its extension.
[[nodiscard]] std::string stemOf(std::string_view path);

/// True when a path names something below the directory `tree`; both are compared as texts, so both have to
/// be absolute and normal. Nothing lies below an empty `tree`, nor a directory below itself.
[[nodiscard]] bool liesBelow(std::string_view path, std::string_view tree) noexcept;

/// The names in `dir` that match a shell pattern (`*` and `?` do not match a slash, they do match a leading
/// dot), in ascending byte order; empty when the directory cannot be read.
[[nodiscard]] std::vector<std::string> listDirectoryEntries(const std::string& dir,
                                                            const std::string& pattern);

/// True when `accept` takes one of the names in a directory; the walk, in no order, ends there.
[[nodiscard]] bool anyDirectoryEntry(const std::string& dir,
                                     const std::function<bool(const std::string&)>& accept);

} // namespace morquill
