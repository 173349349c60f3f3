#pragma once

#include "project/cases/target.h"
#include "project/project_options.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The first step of the workflows on a project: choosing the blocks and the cases to act on.
namespace morquill::project {

/// A project and the blocks chosen from it by name.
struct ChosenBlocks {
    std::string root;
    std::string file;                  ///< the project template
    std::vector<std::string> selected; ///< expanded block names
};

/// The first step of `exec`, `collect` and a run without sub-command: resolves the template, demands names,
/// loads the catalog and selects with wildcards. Nothing, after a message, when the catalog cannot be loaded.
/// Throws `console::UsageError` for a path or a name that leads to no block.
[[nodiscard]] std::optional<ChosenBlocks> chooseBlocks(const ProjectOptions& options);

/// The case directories of a project in order, for `exec` and `collect`. Throws `console::UsageError` when
/// there is none.
[[nodiscard]] std::vector<std::string> chooseCases(const std::string& root);

/// A project or a case and the blocks chosen from it.
struct ChosenWork {
    ProjectTarget target;
    std::vector<std::string> selected; ///< expanded block names
};

/// The first step of `update` and `rebuild`: resolves the path and chooses blocks by name or from the menu
/// under `title`. Nothing after a message; an empty choice has been reported, too.
[[nodiscard]] std::optional<ChosenWork>
chooseWork(const std::string& path, const std::vector<std::string>& names, std::string_view title);

} // namespace morquill::project
