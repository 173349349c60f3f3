#pragma once

#include <string_view>

namespace morquill::views {

/// `explain`: what the parser understood of one task file, as text or as JSON. Looks at the arguments from
/// `argv[2]` on and gives the exit status.
int runExplain(int argc, char** argv);
/// Writes the command's help to standard output.
void printExplainHelp(std::string_view programPath);

} // namespace morquill::views
