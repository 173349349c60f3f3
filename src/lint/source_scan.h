#pragma once

#include "taskdsl/base/source_span.h"

#include <string>
#include <string_view>
#include <vector>

/// A scan of the lines of a task file as written. It finds older words that the parser replaces without
/// leaving a trace in the document, and works on files that do not parse.
namespace morquill::lint {

/// What the scan has found on a line; reported as a warning.
struct PendingLineIssue {
    taskdsl::SourceSpan span;
    std::string_view code; ///< a text with static lifetime
    std::string message;
};

/// Returns the trimmed text after the first `dsl_version:` before the first task; empty when there is none.
[[nodiscard]] std::string_view rawDslVersion(const std::vector<std::string_view>& lines) noexcept;

/// Returns what the rules for lines find in the file `path`.
[[nodiscard]] std::vector<PendingLineIssue> scanRawLines(const std::vector<std::string_view>& lines,
                                                         const SharedText& path);

} // namespace morquill::lint
