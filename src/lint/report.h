#pragma once

#include "taskdsl/base/source_span.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What lint has found, as records and as text.
namespace morquill::lint {

/// How bad an issue is.
enum class LintSeverity : std::int32_t { warning = 0, error = 1 };

/// One thing wrong with a file.
struct LintIssue {
    LintSeverity severity = LintSeverity::warning;
    std::string file;         ///< the linted file, or the included one where the parse failed
    taskdsl::SourceSpan span; ///< invalid when no place is known
    std::string_view code;    ///< a text with static lifetime
    std::string message;
    bool messageNamesPlace = false; ///< the text output does not repeat the place
};

/// The issues of a file.
struct LintFileReport {
    std::string path;
    std::vector<LintIssue> issues; ///< in the order in which they were found
    bool parsed = false;           ///< the parser took the whole file
};

/// Whether a warning counts as an error.
enum class Strictness : std::uint8_t { lenient, strict };

/// What the text output shows.
enum class TextDetail : std::uint8_t { issues, summaryOnly };

/// The counts of a run. With `strict`, every issue counts as an error.
struct LintSummary {
    std::size_t files = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    bool strict = false;
};

/// Counts the issues of all files.
[[nodiscard]] LintSummary summariseLint(const std::vector<LintFileReport>& reports, Strictness strictness);

/// Returns one line per issue, where these are shown, and a summary line.
[[nodiscard]] std::string renderLintText(const std::vector<LintFileReport>& reports,
                                         const LintSummary& summary, TextDetail detail);
/// Returns the whole result as one JSON document.
[[nodiscard]] std::string renderLintJson(const std::vector<LintFileReport>& reports,
                                         const LintSummary& summary);

} // namespace morquill::lint
