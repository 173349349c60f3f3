#pragma once

#include <string>
#include <string_view>
#include <system_error>

/// Files that must not exist yet and are made whole or not at all. Their permission
/// bits are those of any new file or, for a copy, those of its source. The functions
/// return an empty error code on success, `EEXIST` when anything is at the path,
/// even a link that leads nowhere; after any other error, nothing is left there.
namespace morquill::system {

/// Copies a regular file; any other kind of source is `EINVAL`.
[[nodiscard]] std::error_code copyToNewFile(const std::string& source, const std::string& target);

/// Writes a text to a new file.
[[nodiscard]] std::error_code writeNewFile(const std::string& path, std::string_view text);

} // namespace morquill::system
