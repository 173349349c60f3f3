#pragma once

#include "support/text.h"

#include <cstddef>
#include <string_view>

namespace morquill {

/// A place in a text that moves forward as the text is read. All texts returned are views into it.
class Cursor {
  public:
    constexpr explicit Cursor(std::string_view text, std::size_t at = 0) noexcept : text_(text), at_(at) {}

    [[nodiscard]] constexpr bool atEnd() const noexcept { return at_ >= text_.size(); }
    [[nodiscard]] constexpr std::size_t place() const noexcept { return at_; }
    /// The text from the cursor on.
    [[nodiscard]] constexpr std::string_view rest() const noexcept { return text_.substr(at_); }
    /// True when `c` is the next byte.
    [[nodiscard]] constexpr bool isAt(char c) const noexcept { return !atEnd() && text_[at_] == c; }

    /// Moves past white space.
    constexpr Cursor& skipSpace() noexcept {
        at_ = morquill::skipSpace(text_, at_);
        return *this;
    }
    /// Moves past `c` and returns true when it is the next byte.
    constexpr bool take(char c) noexcept {
        const bool found = isAt(c);
        at_ += found ? 1 : 0;
        return found;
    }
    /// Moves past `word` and returns true when the rest begins with it.
    constexpr bool take(std::string_view word) noexcept {
        const bool found = rest().starts_with(word);
        at_ += found ? word.size() : 0;
        return found;
    }
    /// Takes bytes as long as `fits` holds for them; empty when it fails for the first.
    template <class Fits>
    constexpr std::string_view takeWhile(const Fits& fits) noexcept {
        const std::size_t begin = at_;
        while (!atEnd() && fits(text_[at_])) {
            ++at_;
        }
        return text_.substr(begin, at_ - begin);
    }
    /// Takes everything up to white space or the end.
    constexpr std::string_view takeWord() noexcept {
        return takeWhile([](char c) { return !isSpace(c); });
    }
    /// Takes everything up to `place`, which must not lie past the end.
    constexpr std::string_view takeTo(std::size_t place) noexcept {
        const auto taken = text_.substr(at_, place - at_);
        at_ = place;
        return taken;
    }

  private:
    std::string_view text_;
    std::size_t at_;
};

} // namespace morquill
