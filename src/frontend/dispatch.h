#pragma once

#include <string_view>

/// From the process's arguments to the command that answers them.
namespace morquill::frontend {

/// Picks the command by exact name or unique prefix, prints help, or recognises one of the older shapes that
/// have no command word; gives the exit status.
[[nodiscard]] int dispatchCommand(int argc, char** argv);

/// The overview of all commands, on standard output.
void printTopLevelHelp(std::string_view programPath);

/// A whole run of the program: readies the standard streams, opens the log session, calls `command` and gives
/// the exit status. An exception that no command caught ends the process abnormally, after the session was
/// closed.
[[nodiscard]] int runInSession(int argc, char** argv, int (*command)(int argc, char** argv)) noexcept;

} // namespace morquill::frontend
