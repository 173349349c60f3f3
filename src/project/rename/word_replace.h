#pragma once

#include <string>
#include <string_view>

/// Replacing names in whole texts, in time linear in the text whatever text and name look like.
namespace morquill::project {

/// True when `needle` stands in the text. An empty needle stands nowhere.
[[nodiscard]] bool containsText(std::string_view text, std::string_view needle);

/// Replaces every occurrence of `from`, left to right, without overlap; an empty `from` changes nothing.
[[nodiscard]] std::string replaceText(std::string_view text, std::string_view from, std::string_view to);

/// Replaces `word` where it stands by itself: behind a byte that is no ASCII letter, digit or underscore, or
/// at the start of the text, and before such a byte or at the end of the text. A match takes both neighbours
/// with it, so of two words with one separator between them the second stands; what was put in is not scanned
/// again.
[[nodiscard]] std::string replaceWord(std::string_view text, std::string_view word, std::string_view to);

} // namespace morquill::project
