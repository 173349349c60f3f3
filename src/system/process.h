#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Child processes: start one, wait for it, report precisely why it did not succeed. Nothing here throws or
/// prints, and there is no time limit.
///
/// A child inherits standard input, output and error, so its output goes straight to the terminal; buffered
/// standard output of this program is written first. A signal that asks this program to end while it waits is
/// passed on to the child and its descendants (see process_tree.h) and takes effect when the child has ended.
namespace morquill::system {

/// How a child ended.
struct ProcessResult {
    bool launched = false; ///< the child began to run its program
    bool exited = false;   ///< it ended by itself; `exitCode` is valid
    std::int32_t exitCode = 0;
    bool terminatedBySignal = false; ///< it was killed; `signalNumber` is valid
    std::int32_t signalNumber = 0;
    std::string error; ///< why it could not be started; empty otherwise
};

/// Open files that a child has for its standard streams; -1 stands for those of this process.
struct ChildStreams {
    int input = -1;
    int output = -1;
};

/// Runs `argv[0]`, looked up along `PATH`, with the arguments `argv` in `workingDir` (empty: the current
/// directory) and waits for its end. The child starts with no signal blocked and every signal at its default,
/// except a hang-up that this process was told to ignore.
[[nodiscard]] ProcessResult spawnProgram(const std::vector<std::string>& argv, const std::string& workingDir,
                                         ChildStreams streams = {});

/// The same for `/bin/sh -c <command>`.
[[nodiscard]] ProcessResult spawnShell(const std::string& command, const std::string& workingDir);

/// True when the result is an exit with code 0.
[[nodiscard]] bool succeeded(const ProcessResult& result) noexcept;

/// Returns in one line why a child did not succeed; `label` names it, as in "shell command".
[[nodiscard]] std::string describeProcessFailure(const std::string& label, const ProcessResult& result);

/// Runs a program and waits. Returns nothing when it exited with code 0, otherwise why it did not succeed.
[[nodiscard]] std::optional<std::string> runProgram(const std::string& workingDir, const std::string& program,
                                                    const std::vector<std::string>& arguments);

/// The same for a shell command, which is trimmed first.
[[nodiscard]] std::optional<std::string> runShellCommand(const std::string& workingDir,
                                                         const std::string& command);

} // namespace morquill::system
