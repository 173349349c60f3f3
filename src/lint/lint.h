#pragma once

#include <string_view>

namespace morquill::lint {

/// `lint`: the static checker for task files and trees of them. Reads the arguments from `argv[2]` on and
/// returns the exit status: 1 when an issue counts as an error or there was nothing to check.
int runLint(int argc, char** argv);
/// Writes the command's help to standard output.
void printLintHelp(std::string_view programPath);

} // namespace morquill::lint
