#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Walking directory trees without following links, in a fixed order, with one open directory at a time.
namespace morquill::system {

/// What a name in a directory is, a link being a link. `unreadable` is a directory whose entries cannot be
/// listed.
enum class EntryKind : std::int32_t { file = 0, directory, link, other, unreadable };

/// A name found in a directory.
struct DirectoryEntry {
    std::string name;
    EntryKind kind = EntryKind::other;
};

/// The entries of a directory in ascending byte order; false when it cannot be read.
[[nodiscard]] bool readDirectory(const std::string& dir, std::vector<DirectoryEntry>& entries);

/// Visits everything below `top` (not `top` itself, except as `unreadable`): the entries of a directory by
/// name, then its sub-directories. For a directory the visitor says whether to go into it.
void walkTree(const std::string& top,
              const std::function<bool(const std::string& path, EntryKind kind)>& visit);

} // namespace morquill::system
