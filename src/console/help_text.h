#pragma once

#include <string_view>

/// Help texts, written in the source as the user reads them.
namespace morquill::console {

/// Writes a help text to standard output. A line that begins with "# " is a heading, one with "## " the
/// heading of older forms; elsewhere, text between backticks is green, and "@" means the name of the program
/// as it was called, without directories.
void printHelp(std::string_view text, std::string_view programPath);

} // namespace morquill::console
