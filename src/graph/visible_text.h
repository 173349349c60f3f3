#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Texts as a picture can show them.
namespace morquill::graph {

/// The text in valid UTF-8 that every picture format takes: what a reader cannot see or what is not UTF-8 is
/// shown byte by byte as `\x1b`. These are control characters, line and paragraph separators, the marks that
/// turn the direction of writing, the two code points that XML does not allow, and bytes that form no
/// character.
[[nodiscard]] std::string visibleText(std::string_view text);

/// The same, and of a text with more than `limit` characters only the first ones, followed by "...".
[[nodiscard]] std::string visibleStart(std::string_view text, std::size_t limit);

/// A label between double quotes: each line as `escape` makes it, with `lineBreak` between them.
[[nodiscard]] std::string quotedLabel(const std::vector<std::string>& lines, std::string_view lineBreak,
                                      std::string (*escape)(std::string_view line));

/// The length in bytes, 1 to 4, of the UTF-8 character at the front of the text; 0 when there is none: an
/// empty text, a byte that begins no character, an overlong form, a surrogate, a number above U+10FFFF.
[[nodiscard]] std::size_t characterLength(std::string_view text) noexcept;

} // namespace morquill::graph
