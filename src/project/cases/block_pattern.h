#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::project {

/// What a pattern without "/" matches.
enum class MatchedKind : std::uint8_t { any, directories };

/// The paths below a block directory, relative to it, that match a shell pattern, in ascending byte order.
/// A pattern without "/" is matched against the names in the directory itself, those of the given kind;
/// one with "/" against the regular files at any depth, where `*` and `?` do not match "/".
/// Backslashes count as "/", trailing "/" do not count. A match never lies outside the directory.
[[nodiscard]] std::vector<std::string> expandBlockPattern(const std::string& blockDir,
                                                          std::string_view pattern, MatchedKind kind);

} // namespace morquill::project
