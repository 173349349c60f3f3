#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What is in directories, and walks over their trees. Links are never followed, one directory is open at a
/// time. Text is bytes; nothing throws for a file system error.
namespace morquill {

/// What a name in a directory is, a link being a link. `unreadable` is a directory whose entries cannot be
/// listed.
enum class EntryKind : std::int32_t { file = 0, directory, link, other, unreadable };

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

/// Those of them that match a shell pattern (`*` and `?` do not match a slash, they do match a leading dot).
/// Throws likewise.
[[nodiscard]] std::vector<std::string> listDirectoryEntries(const std::string& dir,
                                                            const std::string& pattern);

/// True when `accept` takes one of the names in a directory; the search, in no order, ends there.
/// Throws likewise.
[[nodiscard]] bool anyDirectoryEntry(const std::string& dir,
                                     const std::function<bool(const std::string&)>& accept);

/// The order of a walk.
enum class WalkOrder : std::uint8_t {
    byName,   ///< all entries of a directory by name, then what its sub-directories hold
    asListed, ///< as the file system lists them, each directory followed by what it holds
};

/// Visits everything below `top` (not `top` itself, except as `unreadable`). For a directory the visitor says
/// whether to go into it.
void walkTree(const std::string& top, WalkOrder order,
              const std::function<bool(const std::string& path, EntryKind kind)>& visit);

} // namespace morquill
