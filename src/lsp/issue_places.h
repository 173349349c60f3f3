#pragma once

#include "lint/report.h"
#include "lsp/sources/source_files.h"
#include "lsp/sources/text_store.h"

#include <functional>
#include <map>
#include <optional>
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

/// Finds the places of the issues of one text. What is looked up is kept, so that very many issues cost no
/// more than one look at each line. The text must not change meanwhile.
class IssuePlaces {
  public:
    explicit IssuePlaces(const OpenText& text) : text_(text) {}

    [[nodiscard]] IssuePlace of(const lint::LintIssue& issue);
    /// The place of a parser's warning, which names none: the task that it is about, or the line that
    /// includes the file that it is about, or the first line.
    [[nodiscard]] ByteRange ofWarning(std::string_view warning);

  private:
    /// The lines that name something.
    struct NamingLines {
        std::map<std::string, ByteRange, std::less<>> headers;  ///< the first header of each task
        std::map<std::string, ByteRange, std::less<>> includes; ///< the first line that leads to each file
        std::optional<ByteRange> firstInclude;
    };

    [[nodiscard]] bool isHere(const std::string& path);
    [[nodiscard]] const NamingLines& lines();
    [[nodiscard]] std::optional<ByteRange> taskHeader(std::string_view name);
    [[nodiscard]] std::optional<ByteRange> includeLineOf(const std::string& file);
    [[nodiscard]] ByteRange includeRange(const std::string& file);

    const OpenText& text_;
    std::map<std::string, bool> here_;
    std::map<std::string, std::optional<ByteRange>> included_;
    std::optional<NamingLines> lines_;
};

/// The name that the issue is about, where it is about one that stands in the range or in the block that
/// begins there; otherwise the range.
[[nodiscard]] ByteRange narrowedRange(const lint::LintIssue& issue, ByteRange range, const SourceFile& file);

/// The warning without "Warning: " in front.
[[nodiscard]] std::string_view warningMessage(std::string_view warning) noexcept;

/// The bytes of a span; the first line for one that names no place.
[[nodiscard]] ByteRange spanRange(const taskdsl::SourceSpan& span, const TextBuffer& buffer);

/// The text of a file on the disk; empty when it cannot be read.
[[nodiscard]] TextBuffer textOnDisk(const std::string& path);

} // namespace morquill::lsp
