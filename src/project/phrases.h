#pragma once

#include "console/messages.h"

#include <string>
#include <string_view>

/// Messages, and parts of them, that several workflows share.
namespace morquill::project {

/// Prints a command that is run or, in a dry run, would be.
void printExecution(std::string_view command, console::RunMode mode);

/// "<label> : block directory is missing".
[[nodiscard]] std::string missingBlock(const std::string& label);
/// "no case subdirectories were found in project: <root>".
[[nodiscard]] std::string noCases(const std::string& root);

/// " (<reason>)", or nothing for an empty reason.
[[nodiscard]] std::string inParentheses(const std::string& reason);

} // namespace morquill::project
