#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

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

/// Calls `load` for every such file with one of the extensions. A file for which it throws is reported on
/// standard error, where `what` says what the file is, and the others go on.
void loadFiles(const std::string& directory, const std::vector<std::string_view>& extensions,
               std::string_view what, const std::function<void(const FoundFile&)>& load);

/// Returns a path in double quotes, with a backslash before inner double quotes and backslashes.
[[nodiscard]] std::string quotedPath(std::string_view path);

} // namespace morquill::templates
