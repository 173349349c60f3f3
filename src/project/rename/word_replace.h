#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Replacing names in whole texts, in time linear in the text whatever text and name look like.
namespace morquill::project {

/// True when the text holds `needle`; never for an empty one.
[[nodiscard]] bool containsText(std::string_view text, std::string_view needle);

/// A text that is rewritten by one rule after another. What a rule has put in is not matched again by the
/// rules after it; it counts for them only as the neighbour of the text beside it.
class RewrittenText {
  public:
    explicit RewrittenText(std::string text) : text_(std::move(text)) {}

    /// Replaces every occurrence of `from`, left to right, without overlap; an empty `from` changes nothing.
    void replaceText(std::string_view from, std::string_view to);

    /// Replaces `word` where it is a word of its own: with no ASCII letter, digit or underscore on either
    /// side. A match takes both neighbours with it, so of two words with one separator between them
    /// the second stays.
    void replaceWord(std::string_view word, std::string_view to);

    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    [[nodiscard]] std::string take() && { return std::move(text_); }

  private:
    /// A part of the text that was put in.
    struct Range {
        std::size_t begin;
        std::size_t end;
    };
    template <class Accept>
    void replace(std::string_view from, std::string_view to, Accept accept);

    std::string text_;
    std::vector<Range> putIn_; ///< in ascending order, none touches another's bytes
};

} // namespace morquill::project
