#pragma once

#include "console/messages.h"
#include "project/status/status_scope.h"
#include "project/workflows.h"

#include <string>
#include <vector>

/// Refreshing the command scripts of selected blocks without a full rebuild.
namespace morquill::project {

/// Updates one case. True on success.
[[nodiscard]] bool updateCase(const std::string& caseDir, const std::string& caseFile,
                              const std::vector<std::string>& selected, const UpdateOptions& options);
/// Updates all cases of a project by one run of the generator on its template. True on success.
[[nodiscard]] bool updateProject(const std::string& root, const std::string& file,
                                 const std::vector<std::string>& selected, const UpdateOptions& options);

/// Runs `bash comd` in the selected block directories of each case, counting successes and failures;
/// a dry run counts the runnable ones. What is missing is only reported.
void runComdForCases(const std::vector<std::string>& caseDirs, const std::vector<std::string>& selected,
                     console::RunMode mode, UpdateSummary& summary);

} // namespace morquill::project
