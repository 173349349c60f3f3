#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// True for an `&INCLUDE` line: the keyword followed by a blank or the end. Takes a cleaned line.
[[nodiscard]] bool isIncludeLine(std::string_view text) noexcept;

/// True for a cleaned line that closes the block of the directive before it: a directive, a task header, an
/// `&INCLUDE` line or a block keyword.
[[nodiscard]] bool isStructureLine(std::string_view text) noexcept;

/// True for a command line that goes on in the next line: it ends in exactly one backslash, two or more are
/// characters of the command. Takes a cleaned line.
[[nodiscard]] bool isContinuedCommand(std::string_view text) noexcept;

/// The terminator of the heredoc that a directive's value (`<<`, `<< END`) opens; "EOF" when none is written.
[[nodiscard]] std::string_view heredocTerminator(std::string_view value) noexcept;

/// What the handler of one directive works on: the task it fills in, the text behind the keyword, and the
/// lines behind it, from which a block directive takes its block.
class DirectiveReader {
  public:
    /// `index` is the directive's own line.
    DirectiveReader(TaskInfo& owner, const std::vector<SourceLine>& allLines, std::size_t lineIndex,
                    std::string_view directiveValue, const WarningSink& sink, bool multiSource)
        : task(owner), value(directiveValue), legacyMultiSource(multiSource), lines(allLines),
          index(lineIndex), header(lineIndex), warnings(sink) {}

    TaskInfo& task;
    std::string_view value; ///< trimmed text behind the keyword, comment removed
    bool legacyMultiSource; ///< `%source a,b` is tolerated

    /// The last line consumed so far.
    [[nodiscard]] std::size_t position() const noexcept { return index; }
    /// The line read last, as it stands.
    [[nodiscard]] const SourceLine& currentLine() const noexcept { return lines[index]; }
    /// The span of the line read last: the directive's own, or the current block line.
    [[nodiscard]] SourceSpan span() const;
    /// The span of the directive's own line.
    [[nodiscard]] SourceSpan headerSpan() const;

    /// The place of a condition on the line read last; conditions stand in the file of their task.
    [[nodiscard]] SourceSpan conditionSpan() const;

    /// Moves to the next line of the block and gives its cleaned text, which may be empty; nothing, and no
    /// move, where the block ends.
    std::optional<std::string_view> nextLine();
    /// The same, passing over empty lines.
    std::optional<std::string_view> nextFilledLine();
    /// Moves to the next line whatever it holds, up to a boundary line; its cleaned text.
    std::optional<std::string_view> nextLineOfAnyKind();

    /// True when the value opens a heredoc.
    [[nodiscard]] bool opensHeredoc() const noexcept { return value.starts_with("<<"); }
    /// The terminator of the heredoc that the value opens; "EOF" when none is written.
    [[nodiscard]] std::string heredocTerminator() const {
        return std::string(taskdsl::heredocTerminator(value));
    }
    /// Reads raw lines up to the terminator into `text`, joined with newlines; false when it is missing.
    bool readHeredoc(std::string& text);
    /// Reads the raw lines of an indented text block, joined with newlines; nothing when no line was taken.
    std::optional<std::string> readTextBlock();

    /// "task '<name>' " and the text, to the warning sink.
    void warn(std::string_view text) const;
    /// A fault of the task without a place: "task '<name>' " and the text.
    [[noreturn]] void fail(std::string_view text) const;
    /// The same with the span of the line read last.
    [[noreturn]] void failHere(std::string_view text) const;

  private:
    const std::vector<SourceLine>& lines;
    std::size_t index;
    std::size_t header;
    const WarningSink& warnings;
};

/// Reads a directive into the task; unknown keywords have none.
using DirectiveHandler = void (*)(DirectiveReader&);

/// One row of the directive table: a keyword as written, the name it is recorded under, its handler.
struct DirectiveRow {
    std::string_view keyword;
    std::string_view recordedName;
    DirectiveHandler handler;
};

/// The row of a keyword, compared exactly; null for an unknown one.
[[nodiscard]] const DirectiveRow* findDirective(std::string_view keyword) noexcept;
/// True for a line that is a directive with such a keyword.
[[nodiscard]] bool isKnownDirective(std::string_view line) noexcept;

void readControlDirective(DirectiveReader& reader);
void readBatchDirective(DirectiveReader& reader);
void readSourceDirective(DirectiveReader& reader);

} // namespace morquill::taskdsl
