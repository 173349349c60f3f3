#pragma once

#include "lint/report.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/file_overlay.h"
#include "taskdsl/task/task_document.h"

#include <optional>
#include <string>
#include <string_view>

namespace morquill::lint {

/// Checks one task file: its lines as written, its parse, and the tasks it declares. Never throws for what a
/// file holds or for one that cannot be read: that is an issue. The parser's warnings go to the log.
[[nodiscard]] LintFileReport lintFile(const std::string& path);

/// Checks a text as if it were the file `path`. Without a sink, the parser's warnings go to the log.
[[nodiscard]] LintFileReport lintText(std::string_view text, const std::string& path,
                                      const taskdsl::WarningSink& warnings = {});

/// A report and the document that it was made from.
struct LintedText {
    LintFileReport report;
    std::optional<taskdsl::TaskDocument> document; ///< nothing when the text was not parsed
};

/// Checks a text as `lintText` does and keeps the document. Other files are read through the overlay.
[[nodiscard]] LintedText lintAndKeep(std::string_view text, const std::string& path,
                                     const taskdsl::WarningSink& warnings,
                                     const taskdsl::FileOverlay& overlay);

/// Adds the issue of a reader's fault, as `lintText` does for its own.
void addParseFault(std::string_view fault, LintFileReport& report);

} // namespace morquill::lint
