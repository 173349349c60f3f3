#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Child processes: start one, wait for it, tell precisely why it did not succeed. Nothing here throws or
/// prints, and no time limit applies. A child inherits standard input, output and error, so that what it
/// writes goes straight to the terminal; what this program has buffered for standard output is written first.
/// A signal that asks this program to end while it waits is passed on to the child and what that has started
/// (see process_tree.h) and takes effect when the child has ended.
namespace morquill::system {

/// How one child ended.
struct ProcessResult {
    bool launched = false; ///< the child got as far as running its program
    bool exited = false;   ///< it ended by itself, `exitCode` is valid
    std::int32_t exitCode = 0;
    bool terminatedBySignal = false; ///< it was killed, `signalNumber` is valid
    std::int32_t signalNumber = 0;
    std::string error; ///< the launcher's own failure text, empty otherwise
};

/// Open files that a child has for its standard streams; -1 stands for those of this process.
struct ChildStreams {
    int input = -1;
    int output = -1;
};

/// Runs `argv[0]`, looked up along `PATH`, with `argv` in `workingDir` (empty: where this process stands) and
/// waits for its end. The child starts with no signal blocked and every signal at its default, save a hang-up
/// that this process was told to ignore.
[[nodiscard]] ProcessResult spawnProgram(const std::vector<std::string>& argv, const std::string& workingDir,
                                         ChildStreams streams = {});

/// The same for `/bin/sh -c <command>`.
[[nodiscard]] ProcessResult spawnShell(const std::string& command, const std::string& workingDir);

/// True when the result is an exit with code 0.
[[nodiscard]] bool succeeded(const ProcessResult& result) noexcept;

/// Why a child did not succeed, in one line; `label` names the child ("shell command").
[[nodiscard]] std::string describeProcessFailure(const std::string& label, const ProcessResult& result);

/// Runs a program and waits. Nothing when it exited with code 0, else why it did not succeed.
[[nodiscard]] std::optional<std::string> runProgram(const std::string& workingDir, const std::string& program,
                                                    const std::vector<std::string>& arguments);

/// The same for a shell command, which is trimmed.
[[nodiscard]] std::optional<std::string> runShellCommand(const std::string& workingDir,
                                                         const std::string& command);

} // namespace morquill::system
