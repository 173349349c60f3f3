#pragma once

#include "support/cursor.h"

#include <optional>
#include <string_view>

/// How one line of the task language is taken apart. The classifiers work on a text from which the comment
/// has been removed and which has been trimmed.
namespace morquill::taskdsl {

/// The line up to its comment. A `#` outside quotes, at the start of the line or after white space,
/// begins one. A kind of quote counts only when the line holds an even number of them (at least two,
/// not counting escaped ones), so that a lone apostrophe does not hide a comment.
[[nodiscard]] std::string_view stripComment(std::string_view line) noexcept;

/// `stripComment` and trim: what the language sees of a line.
[[nodiscard]] std::string_view cleanLine(std::string_view line) noexcept;

/// The trimmed text without one surrounding pair of double or single quotes. There are no escapes.
[[nodiscard]] std::string_view unquote(std::string_view text) noexcept;

/// True when the line, as it was written, begins with a blank or a tab.
[[nodiscard]] bool isIndented(std::string_view line) noexcept;

/// The text after a leading `%`; empty when the line is not a directive.
[[nodiscard]] std::string_view directiveName(std::string_view text) noexcept;
/// The trimmed text after a leading `$`, without one pair of double quotes; empty when the line is
/// not a header.
[[nodiscard]] std::string_view taskHeaderName(std::string_view text) noexcept;
/// `keyword` at the front, followed by a blank or the end.
[[nodiscard]] bool beginsBlock(std::string_view text, std::string_view keyword) noexcept;
/// `word` at the front, followed by white space or the end.
[[nodiscard]] bool matchWord(std::string_view text, std::string_view word) noexcept;

/// The trimmed text after a leading `word` in any case, with white space or the end after it;
/// nothing when the text does not begin so.
[[nodiscard]] std::optional<std::string_view> textAfterWord(std::string_view text,
                                                            std::string_view word) noexcept;

/// Takes `\s*=\s*("[^"]*"|'[^']*'|[^\s]+)` and returns the value with its quotes; nothing, and the cursor is
/// where it was, when that does not come next.
[[nodiscard]] std::optional<std::string_view> takeAssignedValue(Cursor& cursor) noexcept;

/// True for a letter followed by letters, digits, `_` and `-`.
[[nodiscard]] bool isIdentifier(std::string_view text) noexcept;
/// True when the test holds for every part of the text between its dots; without a dot, for the whole text.
template <class Test>
[[nodiscard]] bool allDottedParts(std::string_view text, const Test& test) {
    for (;;) {
        const auto dot = text.find('.');
        if (!test(text.substr(0, dot))) {
            return false;
        }
        if (dot == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(dot + 1);
    }
}

/// True for identifiers joined by `.`.
[[nodiscard]] bool isDottedIdentifier(std::string_view text) noexcept;

} // namespace morquill::taskdsl
