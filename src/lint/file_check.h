#pragma once

#include "lint/report.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/generate/parser_options.h"

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

} // namespace morquill::lint
