#pragma once

#include "console/logger.h"
#include "support/outcome.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The task blocks that a project or a case offers.
namespace morquill::project {

/// Block names of one or more task files; every list holds each name once, none empty, in order
/// of first appearance.
struct TaskCatalog {
    std::vector<std::string> availableTasks; ///< as written: what the menu shows
    std::vector<std::string> expandedTasks;  ///< as they exist after matrix expansion: the block directories
    std::vector<std::string> logicalNames;   ///< what a wildcard is matched against
    /// Logical name to the expanded names that it selects; a variant's own name selects itself.
    std::map<std::string, std::vector<std::string>, std::less<>> expansionsByName;
};

/// The name under which a task was written. The variants of a matrix inside an included file reach the
/// including document as tasks of their own; what was written is the name that they were made from.
[[nodiscard]] std::string_view writtenName(const taskdsl::TaskInfo& task) noexcept;

/// The blocks of one task file; a failure when it cannot be read or parsed. Warnings of the language go
/// to the sink.
Outcome<TaskCatalog> scanTaskFile(const std::string& file,
                                  const taskdsl::WarningSink& warnings = console::logWarning);

/// The blocks of a project: its template and the task file of every case. A file that does not parse is left
/// out; a failure, with the first message and the count of the others, only when none parses.
Outcome<TaskCatalog> loadCatalog(const std::string& root, const std::string& file,
                                 const taskdsl::WarningSink& warnings = console::logWarning);

} // namespace morquill::project
