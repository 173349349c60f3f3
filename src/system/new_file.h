#pragma once

#include <string>
#include <string_view>
#include <system_error>

/// Files that must not be there yet and are made whole or not at all. The permission bits are those of any
/// new file or, for a copy, those of its source. A path where something lies, be it a link that leads
/// nowhere, is `EEXIST`; whatever else fails, nothing is left at the path. No error means success.
namespace morquill::system {

/// Copies a regular file; another kind of source is `EINVAL`.
[[nodiscard]] std::error_code copyToNewFile(const std::string& source, const std::string& target);

[[nodiscard]] std::error_code writeNewFile(const std::string& path, std::string_view text);

} // namespace morquill::system
