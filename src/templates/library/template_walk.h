#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace morquill::templates {

/// A file found by the walk, with the parts of its path.
struct FoundFile {
    std::string path;
    std::string stem;      ///< file name without its extension
    std::string extension; ///< from the last dot on; empty when the only dot begins the name
    std::string folder;    ///< name of its directory; empty for the start directory itself
};

/// Calls `visit` for every regular file, or link to one, below a directory, in the order of the file system.
/// Links to directories are not followed, and unreadable directories are skipped.
void walkRegularFiles(const std::string& directory, const std::function<void(const FoundFile&)>& visit);

/// Returns a path in double quotes, with a backslash before inner double quotes and backslashes.
[[nodiscard]] std::string quotedPath(std::string_view path);

} // namespace morquill::templates
