#pragma once

#include "app/command_table.h"

#include <span>
#include <string_view>

/// From the process's arguments to the command that answers them.
namespace morquill::app {

/// Picks the command by exact name or unique prefix, prints help, or recognises one of the older shapes that
/// have no command word; returns the exit status.
[[nodiscard]] int dispatchCommand(int argc, char** argv);

/// A command line without command word that is still understood.
struct OlderShape {
    std::string_view name; ///< what it asks for: "rename", "update", "project" or "template"
    bool (*matches)(std::span<const char* const> arguments) = nullptr;
    RunOperation run = nullptr;
};

/// The first of the older shapes, in their fixed order, that `arguments` (those behind the program path)
/// have; none when there is no such shape.
[[nodiscard]] const OlderShape* findOlderShape(std::span<const char* const> arguments);

/// The overview of all commands, on standard output.
void printTopLevelHelp(std::string_view programPath);

} // namespace morquill::app
