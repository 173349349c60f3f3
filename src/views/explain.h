#pragma once

#include <string_view>

namespace morquill::views {

/// `explain`: what the parser understood of one task file, as text or as JSON. Reads the arguments from
/// `argv[2]` on and returns the exit status.
int runExplain(int argc, char** argv);
/// Writes the command's help to standard output.
void printExplainHelp(std::string_view programPath);

} // namespace morquill::views
