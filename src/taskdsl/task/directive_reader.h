#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/task/fragment_kind.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// True for a command line that goes on in the next line: it ends in exactly one backslash, two or more are
/// characters of the command. Takes a cleaned line.
[[nodiscard]] bool isContinuedCommand(std::string_view text) noexcept;

/// The text of a heredoc. Without its terminator it holds all lines that could belong to it.
struct HeredocText {
    std::string text; ///< raw lines joined with newlines
    bool isClosed = false;
};

/// A directive line taken apart.
struct WrittenDirective {
    std::string_view keyword; ///< up to the first blank: a tab belongs to it
    std::string_view value;   ///< trimmed
};

/// Takes a cleaned directive line apart.
[[nodiscard]] WrittenDirective splitDirective(std::string_view clean) noexcept;

/// What the caller decides about the reading of directives.
struct DirectiveOptions {
    const WarningSink& warnings;
    bool legacyMultiSource = false; ///< `%source a,b` is tolerated
};

/// What the handler of one directive works on: the task it fills in, the text after the keyword,
/// and the lines below, from which a block directive takes its block.
class DirectiveReader {
  public:
    /// `index` is the directive's own line.
    DirectiveReader(TaskInfo& owner, const std::vector<SourceLine>& allLines, std::size_t lineIndex,
                    std::string_view directiveValue, const DirectiveOptions& readerOptions)
        : task(owner), value(directiveValue), options(readerOptions), lines_(allLines), index_(lineIndex),
          header_(lineIndex) {}

    TaskInfo& task;
    std::string_view value; ///< trimmed text after the keyword, comment removed
    DirectiveOptions options;

    /// The last line consumed so far.
    [[nodiscard]] std::size_t position() const noexcept { return index_; }
    /// The line read last, as written.
    [[nodiscard]] const SourceLine& currentLine() const noexcept { return lines_[index_]; }
    /// The span of the line read last: the directive's own, or the current block line.
    [[nodiscard]] SourceSpan span() const;
    /// The span of the directive's own line.
    [[nodiscard]] SourceSpan headerSpan() const;

    /// The place of a condition on the line read last; a condition is always in the file of its task.
    [[nodiscard]] SourceSpan conditionSpan() const;

    /// Moves to the next line of the block and returns its cleaned text, which may be empty;
    /// nothing, and no move, where the block ends.
    std::optional<std::string_view> nextLine();
    /// The same, passing over empty lines.
    std::optional<std::string_view> nextFilledLine();
    /// Moves to the next line whatever it holds, up to a boundary line; its cleaned text.
    std::optional<std::string_view> nextLineOfAnyKind();

    /// True when the value opens a heredoc.
    [[nodiscard]] bool opensHeredoc() const noexcept { return taskdsl::opensHeredoc(value); }
    /// The terminator of the heredoc that the value opens; "EOF" when none is written.
    [[nodiscard]] std::string heredocTerminator() const {
        return std::string(taskdsl::heredocTerminator(value));
    }
    /// Takes the lines of the heredoc with its terminator.
    HeredocText readHeredoc();
    /// Reads the raw lines of an indented text block, joined with newlines; nothing when no line was taken.
    std::optional<std::string> readTextBlock();

    /// "task '<name>' " and the text, to the warning sink.
    void warn(std::string_view text) const;
    /// A fault of the task without a place: "task '<name>' " and the text.
    [[noreturn]] void fail(std::string_view text) const;
    /// The same with the span of the line read last.
    [[noreturn]] void failHere(std::string_view text) const;

  private:
    /// The next line; null at the end and before a boundary.
    [[nodiscard]] const SourceLine* peek() const noexcept;

    const std::vector<SourceLine>& lines_;
    std::size_t index_;
    std::size_t header_;
};

/// Reads a directive into the task; unknown keywords have none.
using DirectiveHandler = void (*)(DirectiveReader&);

/// Which values let a directive open its scope for the lines below it.
enum class ScopeRule : std::uint8_t { always, emptyValue, emptyValueOrHeredoc };

/// One row of the directive table: a keyword as written, the name it is recorded under, its handler,
/// and what an include below it may bring.
struct DirectiveRow {
    std::string_view keyword;
    std::string_view recordedName;
    DirectiveHandler handler;
    FragmentKind scope = FragmentKind::task_body;
    ScopeRule rule = ScopeRule::always;
};

/// The row of a keyword, compared exactly; null for an unknown one.
[[nodiscard]] const DirectiveRow* findDirective(std::string_view keyword) noexcept;
/// The scope of the lines below a directive; that of the task for an unknown keyword and for a value that
/// leaves nothing to those lines.
[[nodiscard]] FragmentKind scopeAfter(const WrittenDirective& directive) noexcept;
/// True for a cleaned line that is a directive with such a keyword.
[[nodiscard]] bool isKnownDirective(std::string_view clean) noexcept;

void readControlDirective(DirectiveReader& reader);
void readBatchDirective(DirectiveReader& reader);
void readSourceDirective(DirectiveReader& reader);

} // namespace morquill::taskdsl
