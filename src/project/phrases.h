#pragma once

#include <string>
#include <string_view>

/// Messages, and parts of them, that several workflows share.
namespace morquill::project {

/// Shows a command that is run or, in a dry run, would be.
void printExecution(std::string_view command, bool dryRun);

/// " (<reason>)", or nothing for an empty reason.
[[nodiscard]] std::string inParentheses(const std::string& reason);

} // namespace morquill::project
