#pragma once

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

/// Reads `project <sub-command> ...`. True when the arguments make a workflow; otherwise what the text allows
/// to be said was printed on standard error and the caller shows the help.
[[nodiscard]] bool parseProjectArguments(int argc, const char* const* argv, ProjectOptions& options);

/// Reads the older shape that is known by its options or by a `.projmq` file.
[[nodiscard]] bool parseCompatibilityArguments(int argc, const char* const* argv, ProjectOptions& options);

/// How the update shape was read.
enum class UpdateShape : std::int32_t { run, help, wrong };

/// Reads the older shape that opens with -b, --batch, -u or --update: `run` makes a workflow, `help` was
/// asked for, `wrong` is a usage error whose message, if it has one, was printed.
[[nodiscard]] UpdateShape parseUpdateArguments(int argc, const char* const* argv, ProjectOptions& options);

/// True when a positional argument names a project or a case: a `.projmq` name (the disk is not asked), an
/// existing `.mq` file, or any existing file or directory inside a project.
[[nodiscard]] bool isProjectPathToken(std::string_view token);

/// Adds the comma-separated names of one `-n` value; empty pieces and names that are already there are
/// dropped.
void appendNames(ProjectOptions& options, std::string_view value);

} // namespace morquill::project
