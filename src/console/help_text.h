#pragma once

#include <string_view>

/// Help texts, written as they are read.
namespace morquill::console {

/// Writes a help to standard output. A line that begins with "# " is a heading, one with "## " the heading of
/// older forms; elsewhere the text between backticks is green and "@" means the program as it was
/// called, without its directories.
void printHelp(std::string_view text, std::string_view programPath);

} // namespace morquill::console
