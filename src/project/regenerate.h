#pragma once

#include "console/messages.h"
#include "project/cases/target.h"
#include "project/status/status_lock.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What update and rebuild share: the checks before anything is touched, the header, and the call of
/// the generator `morquill`.
namespace morquill::project {

/// One case or a whole project, checked and ready to be worked on.
struct WorkPlace {
    TargetKind kind = TargetKind::Project;
    std::string directory;             ///< the case directory or the project root; the generator runs there
    std::string file;                  ///< the task file or the project template
    std::vector<std::string> caseDirs; ///< the cases to be touched, in order
};

/// The words of one of the two workflows.
struct WorkflowWords {
    std::string_view verb;  ///< "update"
    std::string_view title; ///< "Update"
    std::string_view mode;  ///< the generator's mode in the header: "comd-only"
    std::string_view flag;  ///< option on the generator's command line, when not empty
};

inline constexpr WorkflowWords updateWords{"update", "Update", "comd-only", "--comd-only"};
inline constexpr WorkflowWords rebuildWords{"rebuild", "Rebuild", "full", ""};

/// A case to work on; nothing, after a message, when no block is selected, or directory or file is missing.
[[nodiscard]] std::optional<WorkPlace> openCase(const std::string& caseDir, const std::string& caseFile,
                                                const std::vector<std::string>& selected,
                                                const WorkflowWords& words);
/// A project with all its cases; nothing, after a message, when no block is selected or there is no case.
[[nodiscard]] std::optional<WorkPlace> openProject(const std::string& root, const std::string& file,
                                                   const std::vector<std::string>& selected,
                                                   const WorkflowWords& words);

/// `lockStatusFiles` for the cases of this place.
[[nodiscard]] std::optional<StatusLocks> lockWork(const WorkPlace& place);

void printWorkHeader(const WorkPlace& place, const std::vector<std::string>& selected, console::RunMode mode,
                     const WorkflowWords& words);

/// Shows the generator's command line.
void printGeneratorCommand(const WorkPlace& place, console::RunMode mode, const WorkflowWords& words);
/// Runs the generator. Returns nothing on success, else the reason.
[[nodiscard]] std::optional<std::string> runGenerator(const WorkPlace& place, const WorkflowWords& words);

} // namespace morquill::project
