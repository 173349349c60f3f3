#pragma once

#include <string_view>

/// `fmt`, `migrate` and `expand`: a task file through the parser and the canonical writer. Run operations
/// read the arguments from `argv[2]` on and return the exit status; help operations write to standard output.
namespace morquill::views {

void printFmtHelp(std::string_view programPath);
/// Prints a file in canonical layout.
int runFmt(int argc, char** argv);

void printMigrateHelp(std::string_view programPath);
/// The same, and also converts removed forms that no longer read.
int runMigrate(int argc, char** argv);

void printExpandHelp(std::string_view programPath);
/// Prints the file with its matrix as declared or expanded.
int runExpand(int argc, char** argv);

} // namespace morquill::views
