#pragma once

#include "project/cases/target.h"
#include "support/descriptor.h"

#include <optional>
#include <string>
#include <vector>

/// Keeping two runs of mqkit out of the same status files.
namespace morquill::project {

/// The locks of one run, held for as long as these live.
using StatusLocks = std::vector<Descriptor>;

/// Keeps every other update, rebuild and rename out of the cases; nothing, after a message, when one is at
/// work there. `directory` and `file` are the case and its task file, or the root and the template of a
/// project. Two on different cases do not meet. Where the file system has no locks there is nothing to keep
/// them apart.
[[nodiscard]] std::optional<StatusLocks> lockStatusFiles(TargetKind kind, const std::string& directory,
                                                         const std::string& file);

} // namespace morquill::project
