#pragma once

#include "project/project_options.h"

#include <optional>
#include <string>
#include <vector>

/// The workflows behind the sub-commands of `project`. Each prints its own messages and throws
/// `console::UsageError` for a command line that cannot be followed.
namespace morquill::project {

struct UpdateOptions {
    bool dryRun = false;
    bool runComd = false;
};

struct RebuildOptions {
    bool dryRun = false;
    bool runScript = false;
    bool removeWorkMarkers = true;
};

/// Makes a project from the task and geometry files of the current directory. True on success.
[[nodiscard]] bool runProjectInit();
/// Adds cases to a project; the exit status. Throws `console::UsageError` without a project or
/// a geometry file.
[[nodiscard]] int runProjectAdd(const ProjectOptions& options);
/// Refreshes the command scripts of selected blocks. True on success.
[[nodiscard]] bool runProjectUpdate(const std::string& path, const std::vector<std::string>& names,
                                    const UpdateOptions& options);
/// Cleans and regenerates selected blocks. True on success.
[[nodiscard]] bool runProjectRebuild(const std::string& path, const std::vector<std::string>& names,
                                     const RebuildOptions& options);
/// Runs a command in the selected block directories; the exit status. Throws as `chooseBlocks` and
/// `chooseCases` do, and without a command.
[[nodiscard]] int runProjectExec(const ProjectOptions& options);
/// Gathers files from the selected block directories; the exit status. Throws as `chooseBlocks` and
/// `chooseCases` do, and without a pattern.
[[nodiscard]] int runProjectCollect(const ProjectOptions& options);

} // namespace morquill::project
