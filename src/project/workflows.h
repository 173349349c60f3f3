#pragma once

#include "project/project_options.h"

#include <optional>
#include <string>
#include <vector>

/// The workflows behind the sub-commands of `project`. Each prints its own messages; what makes the command
/// line one that cannot be followed is thrown, and the command reports it and shows the help.
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

/// A project and the blocks chosen from it by name.
struct ChosenBlocks {
    std::string root;
    std::string file;                  ///< the project template
    std::vector<std::string> selected; ///< expanded block names
};

/// What `exec`, `collect` and a run without sub-command begin with: resolves the template, demands names,
/// loads the catalog and selects with wildcards. Nothing, after a message, when the catalog cannot be loaded.
/// Throws `console::UsageError` for a path or names that lead to no block.
[[nodiscard]] std::optional<ChosenBlocks> chooseBlocks(const ProjectOptions& options);

/// The case directories of a project in order, for `exec` and `collect`. Throws `console::UsageError` when
/// there is none.
[[nodiscard]] std::vector<std::string> chooseCases(const std::string& root);

/// Makes a project from the task and geometry files of the current directory. True on success.
[[nodiscard]] bool runProjectInit();
/// Adds cases to a project; the exit status. Throws `console::UsageError` without a project or a geometry
/// file.
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
