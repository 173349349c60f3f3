#pragma once

#include <string_view>

/// What the `main` of every program does.
namespace morquill::console {

/// A whole run of a program: readies the standard streams, opens the log session, calls `command` and
/// returns the exit status. An exception that no command caught ends the process abnormally, after the
/// session was closed.
[[nodiscard]] int runInSession(std::string_view toolName, int argc, char** argv,
                               int (*command)(int argc, char** argv)) noexcept;

} // namespace morquill::console
