#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The contents of directories, and walks over their trees. Links are never followed, and only one directory
/// is open at a time. Text is bytes; a file system error is thrown only where a function says so.
namespace morquill {

/// What a name in a directory is; a link counts as a link, whatever it leads to. `unreadable` is a directory
/// whose entries cannot be listed.
enum class EntryKind : std::int32_t { file = 0, directory, link, other, unreadable };

/// What is at a path itself; `other` when nothing is there or the system does not say.
[[nodiscard]] EntryKind kindOf(const std::string& path) noexcept;

/// A name found in a directory.
struct DirectoryEntry {
    std::string name;
    EntryKind kind = EntryKind::other;
};

/// The entries of a directory without "." and "..", in ascending byte order of their names; nothing, with
/// `errno`, when it cannot be read.
[[nodiscard]] std::optional<std::vector<DirectoryEntry>> readDirectory(const std::string& dir);

/// The names in a directory without "." and "..", in ascending byte order; empty when there is no such
/// directory. Throws `std::system_error`, whose text names the directory, when it is there and cannot be
/// read.
[[nodiscard]] std::vector<std::string> listDirectoryEntries(const std::string& dir);

/// The names that match a shell pattern; `*` and `?` match a leading dot, but no slash. Throws likewise.
[[nodiscard]] std::vector<std::string> listDirectoryEntries(const std::string& dir,
                                                            const std::string& pattern);

/// True when `accept` returns true for a name in the
/// directory; the search, in no particular order, ends there. Throws likewise.
[[nodiscard]] bool anyDirectoryEntry(const std::string& dir,
                                     const std::function<bool(const std::string&)>& accept);

/// The order of a walk.
enum class WalkOrder : std::uint8_t {
    byName,   ///< all entries of a directory by name, then the contents of its sub-directories
    asListed, ///< as the file system lists them, each directory followed by its contents
};

/// Visits everything below `top`, but `top` itself only as `unreadable`.
/// For a directory, the visitor returns whether to enter it.
void walkTree(const std::string& top, WalkOrder order,
              const std::function<bool(const std::string& path, EntryKind kind)>& visit);

} // namespace morquill
