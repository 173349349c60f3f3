#pragma once

#include <string>
#include <string_view>

/// Paths as texts. Only the first three functions ask the system; they throw `std::system_error` when it does
/// not know the current directory. Text is bytes.
namespace morquill {

/// The absolute, lexically normal form of a path; a trailing slash stays.
[[nodiscard]] std::string absolutePath(std::string_view path);
/// The same without a trailing slash; an empty path means the current directory.
[[nodiscard]] std::string absoluteLocation(std::string_view path);
/// The weakly canonical form of a path, with links resolved as far as the path exists, or its lexically
/// normal form when the file system reports an error.
[[nodiscard]] std::string normalisedPath(const std::string& path);
/// `dir` and `name` with one slash between them; a leading slash of `name` does not lead out of `dir`.
[[nodiscard]] std::string joinPath(std::string_view dir, std::string_view name);
/// The last component of a path.
[[nodiscard]] std::string baseName(std::string_view path);
/// The path without its last component; "/" for the top.
[[nodiscard]] std::string parentPath(std::string_view path);
/// The extension with its dot, as `std::filesystem` defines it: a leading dot of the name begins none.
[[nodiscard]] std::string_view extensionOf(std::string_view name) noexcept;
/// The last component without its extension.
[[nodiscard]] std::string stemOf(std::string_view path);

/// True when a path names something below the directory `tree`. Both are compared as texts, so both have to
/// be absolute and normal. Nothing lies below an empty `tree`, and no directory lies below itself.
[[nodiscard]] bool liesBelow(std::string_view path, std::string_view tree) noexcept;

} // namespace morquill
