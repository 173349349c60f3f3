#pragma once

#include "console/command_line.h"

#include <string>
#include <string_view>

/// The `rename` command: a new name for a task block in its task file and in everything derived
/// from the name.
namespace morquill::project {

struct RenameOptions {
    std::string file; ///< task file or project template, as typed
    std::string oldName;
    std::string newName;
};

/// The run operation of the command table; the exit status.
[[nodiscard]] int runRename(int argc, char** argv);
/// The older shape `<file> -r <old> <new>`; the exit status.
[[nodiscard]] int runRenameCompatibility(int argc, char** argv);
/// The whole help of `rename` on standard output; `programPath` is the program as it was called.
void printRenameHelp(std::string_view programPath);

/// Reads `rename <file> <old> <new>`. Throws `console::UsageError`.
[[nodiscard]] RenameOptions readRenameWords(int argc, const char* const* argv);
/// Reads the older shape. Throws `console::UsageError`.
[[nodiscard]] RenameOptions readOlderRenameWords(int argc, const char* const* argv);
/// True for the arguments of the older shape: its option and a task file, anywhere.
[[nodiscard]] bool isRenameShape(console::Words arguments) noexcept;
/// True for an argument that names a task file: no option, ending in ".mq" or ".projmq".
[[nodiscard]] bool hasTaskFileSuffix(std::string_view token) noexcept;

/// Renames the block and reports; the exit status is 0 when there was no error.
[[nodiscard]] int renameBlock(const RenameOptions& options);

} // namespace morquill::project
