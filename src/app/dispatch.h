#pragma once

#include "app/command_table.h"

#include <span>
#include <string_view>

/// From the arguments of the process to the command that handles them.
namespace morquill::app {

/// Runs the command with that exact name or unique prefix, the help, or one of the older shapes without a
/// command word. Returns the exit status.
[[nodiscard]] int dispatchCommand(int argc, char** argv);

/// A form of command line without a command word that is still understood.
struct OlderShape {
    std::string_view name; ///< the command it means: "rename", "update", "project" or "template"
    bool (*matches)(std::span<const char* const> arguments) = nullptr;
    RunOperation run = nullptr;
};

/// Returns the first of the older shapes, in their fixed order, that matches `arguments`, those after the
/// program path; null when there is none.
[[nodiscard]] const OlderShape* findOlderShape(std::span<const char* const> arguments);

/// Prints the overview of all commands to standard output.
void printTopLevelHelp(std::string_view programPath);

} // namespace morquill::app
