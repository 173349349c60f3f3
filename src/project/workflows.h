#pragma once

#include "project/project_options.h"

#include <string>
#include <string_view>
#include <vector>

/// The workflows behind the sub-commands of `project`. Each prints its own messages.
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
/// Adds cases to a project; the exit status.
[[nodiscard]] int runProjectAdd(const ProjectOptions& options, std::string_view programPath);
/// Refreshes the command scripts of selected blocks. True on success.
[[nodiscard]] bool runProjectUpdate(const std::string& path, const std::vector<std::string>& names,
                                    const UpdateOptions& options);
/// Cleans and regenerates selected blocks. True on success.
[[nodiscard]] bool runProjectRebuild(const std::string& path, const std::vector<std::string>& names,
                                     const RebuildOptions& options);
/// Runs a command in the selected block directories; the exit status.
[[nodiscard]] int runProjectExec(const ProjectOptions& options, std::string_view programPath);
/// Gathers files from the selected block directories; the exit status.
[[nodiscard]] int runProjectCollect(const ProjectOptions& options, std::string_view programPath);

} // namespace morquill::project
