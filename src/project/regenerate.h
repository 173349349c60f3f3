#pragma once

#include "project/cases/target.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What update and rebuild share: the checks before anything is touched, the header, and the call of the
/// generator `morquill`.
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

/// A case to work on; nothing, after a message, when no block is selected, or directory or file is missing.
[[nodiscard]] std::optional<WorkPlace> openCase(const std::string& caseDir, const std::string& caseFile,
                                                const std::vector<std::string>& selected,
                                                const WorkflowWords& words);
/// A project with all its cases; nothing, after a message, when no block is selected or there is no case.
[[nodiscard]] std::optional<WorkPlace> openProject(const std::string& root, const std::string& file,
                                                   const std::vector<std::string>& selected,
                                                   const WorkflowWords& words);

void printWorkHeader(const WorkPlace& place, const std::vector<std::string>& selected, bool dryRun,
                     const WorkflowWords& words);

/// Shows the generator's command line.
void printGeneratorCommand(const WorkPlace& place, bool dryRun, const WorkflowWords& words);
/// Runs the generator. Nothing when it ended well, else the reason.
[[nodiscard]] std::optional<std::string> runGenerator(const WorkPlace& place, const WorkflowWords& words);

} // namespace morquill::project
