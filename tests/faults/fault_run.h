#pragma once

#include "faults/injector.h"

#include <string>
#include <vector>

/// Running the program with one of its calls made to fail.
namespace faults {

/// Which call of a run gets what.
struct Fault {
    std::string callClass = "none"; ///< of `classNames`
    int call = 0;                   ///< from 1 on
    std::string kind = "0"; ///< error number (with `+`: from there on), `-<signal>`, `short` or `full`
};

/// A command with its surroundings.
struct Command {
    std::string directory;
    std::vector<std::string> arguments; ///< without the program's name
    std::string input;
    std::vector<std::string> environment; ///< `<name>=<value>`
};

struct RunResult {
    int status = 0; ///< the exit status, or 128 and the signal that ended it; 1000 when it had to be killed
    std::string output;
    std::string errors;
    Report report{};
    int stops = 0; ///< how often it was stopped, and let go on
};

/// Runs a command with a fault. Throws `std::runtime_error` when the surroundings do not let it.
[[nodiscard]] RunResult runWith(const Fault& fault, const Command& command);

/// True when every call gets every fault; otherwise the faults take turns.
[[nodiscard]] bool isThorough();

/// The value of an environment variable that tests are given. Throws `std::runtime_error` without one.
[[nodiscard]] std::string given(const char* variable);

} // namespace faults
