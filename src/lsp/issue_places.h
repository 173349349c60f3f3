#pragma once

#include "lint/report.h"
#include "lsp/sources/source_files.h"
#include "lsp/sources/text_store.h"

#include <string>
#include <string_view>

/// Where in an open text an issue is shown.
namespace morquill::lsp {

struct IssuePlace {
    std::string file;         ///< another file, in which the fault lies; empty for the text itself
    ByteRange range;          ///< in the text: the fault, or the line that includes the other file
    taskdsl::SourceSpan span; ///< in the other file
    std::string message;      ///< without the place that some messages begin with
};

[[nodiscard]] IssuePlace placeOfIssue(const lint::LintIssue& issue, const OpenText& text);

/// The name that the issue is about, where it is about one that stands in the range or in the block that
/// begins there; otherwise the range.
[[nodiscard]] ByteRange narrowedRange(const lint::LintIssue& issue, ByteRange range, const SourceFile& file);

/// The place of a parser's warning, which names none: the task that it is about, or the line that includes
/// the file that it is about, or the first line.
[[nodiscard]] ByteRange placeOfWarning(std::string_view warning, const OpenText& text);
/// The warning without "Warning: " in front.
[[nodiscard]] std::string_view warningMessage(std::string_view warning) noexcept;

/// The bytes of a span; the first line for one that names no place.
[[nodiscard]] ByteRange spanRange(const taskdsl::SourceSpan& span, const TextBuffer& buffer);

/// The text of a file on the disk; empty when it cannot be read.
[[nodiscard]] TextBuffer textOnDisk(const std::string& path);

} // namespace morquill::lsp
