#pragma once

#include "console/logger.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/task/task_document.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The task blocks that a project or a case offers.
namespace morquill::project {

/// Block names of one or more task files; every list holds each name once, none empty, in order of first
/// appearance.
struct TaskCatalog {
    std::vector<std::string> availableTasks; ///< as written: what the menu shows
    std::vector<std::string> expandedTasks;  ///< as they exist after matrix expansion: the block directories
    std::vector<std::string> logicalNames;   ///< what a wildcard is matched against
    /// Logical name to the expanded names it stands for; a variant's own name stands for itself.
    std::map<std::string, std::vector<std::string>, std::less<>> expansionsByName;
};

/// The name under which a task was written. The variants of a matrix inside an included file reach the
/// including document as tasks of their own; what was written is the name that they were made from.
[[nodiscard]] const std::string& writtenName(const taskdsl::TaskInfo& task) noexcept;

/// The blocks of one task file. False with the message, without its tag, in `error` when it cannot be read or
/// parsed. Warnings of the language go to the sink.
[[nodiscard]] bool scanTaskFile(const std::string& file, TaskCatalog& catalog, std::string& error,
                                const taskdsl::WarningSink& warnings = console::logWarning);

/// The blocks of a project: its template and the task file of every case. A file that does not parse is left
/// out; false, with the first failure and the count of the others in `error`, only when none parses.
[[nodiscard]] bool loadCatalog(const std::string& root, const std::string& file, TaskCatalog& catalog,
                               std::string& error,
                               const taskdsl::WarningSink& warnings = console::logWarning);

} // namespace morquill::project
