#pragma once

#include "taskdsl/base/source_span.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What lint has found, and how it is shown.
namespace morquill::lint {

enum class LintSeverity : std::int32_t { warning = 0, error = 1 };

/// One thing that is wrong with a file.
struct LintIssue {
    LintSeverity severity = LintSeverity::warning;
    std::string file;         ///< the linted file; a parse fault in an included file names that one
    taskdsl::SourceSpan span; ///< invalid when no place is known
    std::string_view code;    ///< a text with static lifetime
    std::string message;
    bool messageNamesPlace = false; ///< the text does not put the place in front once more
};

struct LintFileReport {
    std::string path;
    std::vector<LintIssue> issues; ///< in the order found
    bool parsed = false;           ///< the parser took the whole file
};

/// The counts of a run. With `strict`, every issue is an error.
struct LintSummary {
    std::size_t files = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    bool strict = false;
};

[[nodiscard]] LintSummary summariseLint(const std::vector<LintFileReport>& reports, bool strict);

/// One line per issue and one that sums up; with `quiet` only the latter.
[[nodiscard]] std::string renderLintText(const std::vector<LintFileReport>& reports,
                                         const LintSummary& summary, bool quiet);
/// The whole result as one JSON document.
[[nodiscard]] std::string renderLintJson(const std::vector<LintFileReport>& reports,
                                         const LintSummary& summary);

} // namespace morquill::lint
