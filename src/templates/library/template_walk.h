#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace morquill::templates {

/// A file met on the walk, with the parts of its path.
struct FoundFile {
    std::string path;
    std::string stem;      ///< file name without its extension
    std::string extension; ///< from the last dot on; empty for a name that only begins with a dot
    std::string folder;    ///< name of the directory that it lies in; empty for the start directory itself
};

/// Calls `visit` for every regular file (a link to one counts) below a directory, in the order in which the
/// file system yields them. Links to directories are not followed, unreadable directories are passed over.
void walkRegularFiles(const std::string& directory, const std::function<void(const FoundFile&)>& visit);

/// A path in double quotes, with inner double quotes and backslashes behind a backslash.
[[nodiscard]] std::string quotedPath(std::string_view path);

} // namespace morquill::templates
