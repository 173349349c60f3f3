#pragma once

#include "project/cases/target.h"
#include "support/descriptor.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What update and rebuild share: the choice of blocks, the checks before anything is touched, the header,
/// and the call of the generator `morquill`.
namespace morquill::project {

/// One case or a whole project, checked and ready to be worked on.
struct WorkPlace {
    TargetKind kind = TargetKind::Project;
    std::string directory;             ///< the case directory or the project root; the generator runs there
    std::string file;                  ///< the task file or the project template
    std::vector<std::string> caseDirs; ///< the cases to be touched, in order
};

/// How one of the two workflows names itself.
struct WorkflowWords {
    std::string_view verb;  ///< "update"
    std::string_view title; ///< "Update"
    std::string_view mode;  ///< the generator's mode in the header: "comd-only"
    bool comdOnly;          ///< the generator is told "--comd-only"
};

inline constexpr WorkflowWords updateWords{"update", "Update", "comd-only", true};
inline constexpr WorkflowWords rebuildWords{"rebuild", "Rebuild", "full", false};

/// Resolves the path and chooses blocks by name or from the menu under `title`. False after a message; an
/// empty choice is a success and was told.
[[nodiscard]] bool chooseWork(const std::string& path, const std::vector<std::string>& names,
                              std::string_view title, ProjectTarget& target,
                              std::vector<std::string>& selected);

/// A case to work on; nothing, after a message, when no block is selected, or directory or file is missing.
[[nodiscard]] std::optional<WorkPlace> openCase(const std::string& caseDir, const std::string& caseFile,
                                                const std::vector<std::string>& selected,
                                                const WorkflowWords& words);
/// A project with all its cases; nothing, after a message, when no block is selected or there is no case.
[[nodiscard]] std::optional<WorkPlace> openProject(const std::string& root, const std::string& file,
                                                   const std::vector<std::string>& selected,
                                                   const WorkflowWords& words);

/// The locks of one workflow on the status files that it changes, held for as long as these live.
using WorkLocks = std::vector<Descriptor>;

/// Keeps every other update and rebuild out of these cases; nothing, after a message, when one is at work
/// there. Two on different cases do not meet. Where the file system has no locks there is nothing to keep
/// them apart.
[[nodiscard]] std::optional<WorkLocks> lockWork(const WorkPlace& place);

void printWorkHeader(const WorkPlace& place, const std::vector<std::string>& selected, bool dryRun,
                     const WorkflowWords& words);

/// Shows a command that is run or, in a dry run, would be.
void printExecution(std::string_view command, bool dryRun);

/// Shows the generator's command line.
void printGeneratorCommand(const WorkPlace& place, bool dryRun, const WorkflowWords& words);
/// Runs the generator; true when it ended well. Otherwise `failure` takes the reason.
[[nodiscard]] bool runGenerator(const WorkPlace& place, const WorkflowWords& words, std::string& failure);

/// " (<reason>)", or nothing for an empty reason.
[[nodiscard]] std::string inParentheses(const std::string& reason);

} // namespace morquill::project
