#pragma once

#include "console/command_line.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The command line of `project` in its word form and in the older shapes that have no command word.
namespace morquill::project {

enum class ProjectSubCommand : std::int32_t { None = 0, Init, Add, Update, Rebuild, Exec, Collect };

/// What one `project` command line asks for.
struct ProjectOptions {
    ProjectSubCommand subCommand = ProjectSubCommand::None;
    std::string path;                  ///< project or case as typed; empty means not given
    std::vector<std::string> names;    ///< task block names in order of mention, each once, none empty
    std::vector<std::string> xyzFiles; ///< geometry files of `add`, as typed
    std::string command;               ///< the shell command of `exec`
    std::vector<std::string> patterns; ///< the glob patterns of `collect`
    bool dryRun = false;
    bool runComd = false;
    bool runScript = false;
};

// The readers of the three shapes throw `console::UsageError` for words that make no workflow; the caller
// reports its message, when it has one, and shows the help.

/// Reads `project <sub-command> ...`.
[[nodiscard]] ProjectOptions readProjectWords(int argc, const char* const* argv);

/// Reads the older shape that is known by its options or by a `.projmq` file.
[[nodiscard]] ProjectOptions readCompatibilityWords(int argc, const char* const* argv);

/// Reads the older shape that opens with -b, --batch, -u or --update.
[[nodiscard]] ProjectOptions readUpdateWords(int argc, const char* const* argv);

/// True for the arguments of the older shape that is known by its options or by a `.projmq` file.
[[nodiscard]] bool isProjectShape(console::Words arguments) noexcept;
/// True for the arguments of the older shape that opens with -b, --batch, -u or --update.
[[nodiscard]] bool isUpdateShape(console::Words arguments) noexcept;

/// True when a positional argument names a project or a case: a `.projmq` name (the disk is not asked), an
/// existing `.mq` file, or any existing file or directory inside a project.
[[nodiscard]] bool isProjectPathToken(std::string_view token);

/// Adds the comma-separated names of one `-n` value; empty pieces and names that are already
/// there are dropped.
void appendNames(ProjectOptions& options, std::string_view value);

} // namespace morquill::project
