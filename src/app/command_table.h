#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The commands of the program: one row each, looked up by name or unique prefix.
namespace morquill::app {

/// Prints a command's help to standard output; takes the program path as given (`argv[0]`).
using HelpOperation = void (*)(std::string_view programPath);
/// Runs a command with the untouched argument vector; returns the exit status.
using RunOperation = int (*)(int argc, char** argv);

/// A command.
struct CommandEntry {
    std::string_view name; ///< the command word, lower case
    std::string_view displayName;
    HelpOperation help = nullptr;
    RunOperation run = nullptr;
    std::string_view description = {}; ///< its text in the overview
};

/// Returns all commands, in the order in which messages list them.
[[nodiscard]] std::span<const CommandEntry> commandTable() noexcept;

/// Returns the row whose name is `token` (in any case), or the only one whose name begins with it; null for
/// an empty token. `matches` receives the name of the exact match, or all names that begin with the token.
[[nodiscard]] const CommandEntry* findCommand(std::span<const CommandEntry> table, std::string_view token,
                                              std::vector<std::string>& matches);

/// Runs a command on one task file: prints the help and returns 0 when `argv[helpIndex]` is a help token,
/// returns 1 without a `run`, otherwise the result of `run`.
[[nodiscard]] int runFileCommand(int argc, char** argv, int helpIndex, HelpOperation help, RunOperation run);

} // namespace morquill::app
