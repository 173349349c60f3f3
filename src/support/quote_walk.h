#pragma once

#include "support/text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// One walk through texts with quotes, snapshots (`{{ }}`) and
/// brackets. The differences between languages are data: a `QuoteRule`.
namespace morquill {

/// Where a backslash protects the byte after it. A backslash at the very end protects nothing.
enum class Backslash : std::uint8_t { nowhere, inDoubleQuotes, inQuotes, exceptInSingleQuotes, everywhere };

/// Which bytes it protects there; before any other, it is an ordinary byte.
enum class Protected : std::uint8_t {
    anyByte,
    shellBytes,       ///< quotes, the backslash and white space
    quoteOrBackslash, ///< the open quote, and the backslash
};

/// What `{{` and `}}` mean.
enum class Snapshots : std::uint8_t {
    none,   ///< two ordinary bytes
    flat,   ///< everything up to the first `}}` is inside; quotes mean nothing there
    nested, ///< pairs nest, and quotes inside them hide braces
};

/// One row of a table of rules. Quotes of one kind mean nothing inside those of the other.
struct QuoteRow {
    std::string_view quotes = "\"'";
    Backslash backslash = Backslash::inQuotes;
    Protected isProtected = Protected::anyByte;
    Snapshots snapshots = Snapshots::none;
    std::string_view opening = {}; ///< brackets that count outside quotes and snapshots, all of one kind
    std::string_view closing = {}; ///< one without an open bracket is ignored
};

/// A row prepared for walks: what each byte may mean.
class QuoteRule {
  public:
    enum class Byte : std::uint8_t { plain, quote, backslash, brace, opening, closing };

    constexpr explicit QuoteRule(const QuoteRow& row) noexcept : row_(row) {
        mark(row.quotes, Byte::quote);
        mark(row.backslash == Backslash::nowhere ? "" : "\\", Byte::backslash);
        mark(row.snapshots == Snapshots::none ? "" : "{}", Byte::brace);
        mark(row.opening, Byte::opening);
        mark(row.closing, Byte::closing);
    }

    [[nodiscard]] constexpr Byte byteOf(char c) const noexcept {
        return bytes_[static_cast<unsigned char>(c)];
    }
    [[nodiscard]] constexpr const QuoteRow& row() const noexcept { return row_; }

  private:
    constexpr void mark(std::string_view bytes, Byte meaning) noexcept {
        for (const char c : bytes) {
            bytes_[static_cast<unsigned char>(c)] = meaning;
        }
    }

    QuoteRow row_;
    std::array<Byte, 256> bytes_{};
};

/// The state of a walk through a text. The walk may continue in another text, as if that followed the first.
class QuoteWalk {
  public:
    constexpr explicit QuoteWalk(const QuoteRule& rule) noexcept : rule_(&rule) {}
    explicit QuoteWalk(QuoteRule&&) = delete;

    [[nodiscard]] constexpr bool inQuotes() const noexcept { return quote_ != '\0'; }
    [[nodiscard]] constexpr bool inSnapshot() const noexcept { return snapshots_ > 0; }
    /// True outside quotes and snapshots.
    [[nodiscard]] constexpr bool inOpen() const noexcept { return !inQuotes() && !inSnapshot(); }
    /// True outside quotes, snapshots and brackets.
    [[nodiscard]] constexpr bool atTop() const noexcept { return inOpen() && depth_ == 0; }
    /// The number of open brackets.
    [[nodiscard]] constexpr std::size_t depth() const noexcept { return depth_; }

    /// Takes what begins at `at` and returns the place after it: two bytes on for `{{`, `}}` and a byte with
    /// the backslash that protects it, otherwise one.
    [[nodiscard]] constexpr std::size_t step(std::string_view text, std::size_t at) noexcept {
        switch (rule_->byteOf(text[at])) {
        case QuoteRule::Byte::plain:
            break;
        case QuoteRule::Byte::quote:
            takeQuote(text[at]);
            break;
        case QuoteRule::Byte::backslash:
            return at + (protects(text, at) ? 2 : 1);
        case QuoteRule::Byte::brace:
            return at + (takeBraces(text, at) ? 2 : 1);
        case QuoteRule::Byte::opening:
            depth_ += inOpen() ? 1 : 0;
            break;
        case QuoteRule::Byte::closing:
            depth_ -= inOpen() && depth_ > 0 ? 1 : 0;
            break;
        }
        return at + 1;
    }

  private:
    constexpr void takeQuote(char c) noexcept {
        if (quote_ == c) {
            quote_ = '\0';
        } else if (quote_ == '\0' && !(inSnapshot() && rule_->row().snapshots == Snapshots::flat)) {
            quote_ = c;
        }
    }

    [[nodiscard]] constexpr bool escapesHere() const noexcept {
        switch (rule_->row().backslash) {
        case Backslash::nowhere:
            return false;
        case Backslash::inDoubleQuotes:
            return quote_ == '"';
        case Backslash::inQuotes:
            return inQuotes();
        case Backslash::exceptInSingleQuotes:
            return quote_ != '\'';
        case Backslash::everywhere:
            break;
        }
        return true;
    }

    [[nodiscard]] constexpr bool protects(std::string_view text, std::size_t at) const noexcept {
        if (at + 1 == text.size() || !escapesHere()) {
            return false;
        }
        const char c = text[at + 1];
        switch (rule_->row().isProtected) {
        case Protected::shellBytes:
            return c == '"' || c == '\'' || c == '\\' || isSpace(c);
        case Protected::quoteOrBackslash:
            return c == quote_ || c == '\\';
        case Protected::anyByte:
            break;
        }
        return true;
    }

    /// Returns whether a pair that opens or closes a snapshot begins at `at`.
    constexpr bool takeBraces(std::string_view text, std::size_t at) noexcept {
        const char c = text[at];
        if (inQuotes() || at + 1 == text.size() || text[at + 1] != c) {
            return false;
        }
        if (c == '{') {
            const bool opens = !inSnapshot() || rule_->row().snapshots == Snapshots::nested;
            snapshots_ += opens ? 1 : 0;
            return opens;
        }
        const bool closes = inSnapshot();
        snapshots_ -= closes ? 1 : 0;
        return closes;
    }

    const QuoteRule* rule_;
    std::size_t snapshots_ = 0;
    std::size_t depth_ = 0;
    char quote_ = '\0';
};

/// The first place outside quotes, snapshots and brackets for which `fits` holds; npos when there is none.
template <class Fits>
[[nodiscard]] constexpr std::size_t findAtTop(std::string_view text, const QuoteRule& rule,
                                              const Fits& fits) {
    QuoteWalk walk(rule);
    for (std::size_t at = 0; at < text.size(); at = walk.step(text, at)) {
        if (walk.atTop() && fits(at)) {
            return at;
        }
    }
    return std::string_view::npos;
}

/// Splits `text` at each `separator` outside quotes, snapshots and brackets. Returns one field more than
/// separators, as written; the fields are views into `text`.
[[nodiscard]] std::vector<std::string_view> splitAtTop(std::string_view text, const QuoteRule& rule,
                                                       char separator);

} // namespace morquill
