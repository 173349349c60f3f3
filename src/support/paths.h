#pragma once

#include <string>
#include <string_view>

/// Paths as texts; the first three ask the system. Text is bytes; nothing throws.
namespace morquill {

/// The absolute, lexically normal form of a path with its trailing slash, if it has one.
[[nodiscard]] std::string absolutePath(std::string_view path);
/// The same without a trailing slash; an empty path stands for the current directory.
[[nodiscard]] std::string absoluteLocation(std::string_view path);
/// The weakly canonical form of a path, links resolved as far as it exists, or its lexically normal form when
/// the file system reports an error.
[[nodiscard]] std::string normalisedPath(const std::string& path);
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

} // namespace morquill
