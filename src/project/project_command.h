#pragma once

#include "project/project_options.h"

#include <string_view>

/// The `project` command and the older command shapes that lead to it.
namespace morquill::project {

/// The run operation of the command table; the exit status.
[[nodiscard]] int runProject(int argc, char** argv);
/// The older shape that is known by its options or by a `.projmq` file; the exit status.
[[nodiscard]] int runProjectCompatibility(int argc, char** argv);
/// The older shape that opens with -b, --batch, -u or --update; the exit status.
[[nodiscard]] int runUpdateCompatibility(int argc, char** argv);

/// Runs what the options ask for; the exit status.
[[nodiscard]] int runProjectWorkflow(const ProjectOptions& options, std::string_view programPath);

/// The whole help of `project` on standard output; `programPath` is the program as it was called.
void printProjectHelp(std::string_view programPath);

} // namespace morquill::project
