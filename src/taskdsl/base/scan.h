#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How one line of the task language is taken apart. The classifiers work on a text from which the comment
/// has been removed and which has been trimmed.
namespace morquill::taskdsl {

/// The line up to its comment. A `#` outside quotes, at the start of the line or behind white space, begins
/// one. A kind of quote takes part only when the line holds an even number of it (at least two, those behind
/// a backslash not counted), so that a lone apostrophe does not hide a comment.
[[nodiscard]] std::string_view stripComment(std::string_view line) noexcept;

/// `stripComment` and trim: what the language sees of a line.
[[nodiscard]] std::string_view cleanLine(std::string_view line) noexcept;

/// The trimmed text without one surrounding pair of double or single quotes. There are no escapes.
[[nodiscard]] std::string_view unquote(std::string_view text) noexcept;

/// Undoes the canonical writer's scalar quoting: a text that is exactly one double-quoted scalar with every
/// inner quote escaped and no escapes but \" \\ \t \n \r comes back decoded; any other text is given to
/// `unquote`.
[[nodiscard]] std::string readScalar(std::string_view text);

/// The decoded value of a text that is exactly one double-quoted scalar as the canonical writer makes it.
/// False, and `value` untouched, for any other text.
[[nodiscard]] bool decodeCanonicalScalar(std::string_view text, std::string& value);

/// The text behind a leading `%`; empty when the line is no directive.
[[nodiscard]] std::string_view directiveName(std::string_view text) noexcept;
/// The trimmed text behind a leading `$`, without one pair of double quotes; empty when the line is no
/// header.
[[nodiscard]] std::string_view taskHeaderName(std::string_view text) noexcept;
/// `keyword` at the front, followed by a blank or the end.
[[nodiscard]] bool beginsBlock(std::string_view text, std::string_view keyword) noexcept;
/// `word` at the front, followed by white space or the end.
[[nodiscard]] bool matchWord(std::string_view text, std::string_view word) noexcept;

/// Splits at white space like a shell: single quotes take everything literally, double quotes group, and a
/// backslash before a quote, a backslash or white space protects it. An empty pair of quotes is an empty
/// word. An unclosed quote runs to the end, a last backslash is literal.
[[nodiscard]] std::vector<std::string> splitShellWords(std::string_view text);

/// True for a letter followed by letters, digits, `_` and `-`.
[[nodiscard]] bool isIdentifier(std::string_view text) noexcept;
/// True for identifiers joined by `.`.
[[nodiscard]] bool isDottedIdentifier(std::string_view text) noexcept;

} // namespace morquill::taskdsl
