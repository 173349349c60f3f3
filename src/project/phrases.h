#pragma once

#include <string>
#include <string_view>

/// Parts of messages that several workflows share.
namespace morquill::project {

/// "[mqkit][DRY-RUN] " or "[mqkit] execute ", which precedes a command that is shown.
[[nodiscard]] std::string_view executePrefix(bool dryRun) noexcept;

/// " (<reason>)", or nothing for an empty reason.
[[nodiscard]] std::string inParentheses(const std::string& reason);

} // namespace morquill::project
