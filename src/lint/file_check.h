#pragma once

#include "lint/report.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/parser_options.h"
#include "taskdsl/task/task_document.h"

#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace morquill::lint {

/// Checks one task file: its lines as written, its parse, and the tasks it declares. A file that cannot be
/// read or parsed is an issue of the report, not an exception. The parser's warnings go to the sink; `isFile`
/// answers whether an extra file lies beside the file, without it the disk is asked.
[[nodiscard]] LintFileReport lintFile(const std::string& path, const taskdsl::WarningSink& warnings,
                                      const taskdsl::FileTest& isFile = {});

/// Checks a text as if it were the content of the file `path`.
[[nodiscard]] LintFileReport lintText(std::string_view text, const std::string& path,
                                      const taskdsl::WarningSink& warnings);

/// A report and the document that it was made from.
struct LintedText {
    LintFileReport report;
    std::optional<taskdsl::TaskDocument> document; ///< nothing when the text was not parsed
};

/// Checks a text as `lintText` does and keeps the document. Other files are read through the overlay.
[[nodiscard]] LintedText lintAndKeep(std::string_view text, const std::string& path,
                                     const taskdsl::WarningSink& warnings,
                                     const taskdsl::FileOverlay& overlay);

/// Adds the issue of a fault that ended a parse, as `lintText` does for its own.
void addParseFault(const std::exception& fault, LintFileReport& report);

} // namespace morquill::lint
