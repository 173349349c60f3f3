#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Byte-wise text helpers. Text is bytes: casing and character classes are ASCII, no locale takes part,
/// and bytes above 0x7f are ordinary characters.
namespace morquill {

/// True for blank, tab, line feed, vertical tab, form feed and carriage return; 0x85 and 0xA0 are no blanks.
[[nodiscard]] constexpr bool isSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
[[nodiscard]] constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
[[nodiscard]] constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// The bytes of words and names: `[A-Za-z0-9_]`.
[[nodiscard]] constexpr bool isWordChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_';
}
/// `[A-Za-z_]`: how a word begins that is no number.
[[nodiscard]] constexpr bool isWordStart(char c) noexcept {
    return isLetter(c) || c == '_';
}
/// `[A-Za-z0-9_-]`.
[[nodiscard]] constexpr bool isNameChar(char c) noexcept {
    return isWordChar(c) || c == '-';
}
/// `[A-Za-z0-9_.]`: words joined by dots.
[[nodiscard]] constexpr bool isDottedWordChar(char c) noexcept {
    return isWordChar(c) || c == '.';
}
/// `[A-Za-z0-9_.-]`: the keys of settings, defines, axes, items and properties.
[[nodiscard]] constexpr bool isKeyChar(char c) noexcept {
    return isNameChar(c) || c == '.';
}
[[nodiscard]] constexpr char lowerChar(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The place of the first byte from `at` on that is no white space; the end when there is none.
[[nodiscard]] constexpr std::size_t skipSpace(std::string_view text, std::size_t at = 0) noexcept {
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

/// True for what `trim` takes off: blank, tab, carriage return and line feed.
[[nodiscard]] constexpr bool isTrimmed(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
/// The text without leading blanks, tabs, carriage returns and line feeds. Inline, as every line passes here
/// several times.
[[nodiscard]] constexpr std::string_view trimLeft(std::string_view text) noexcept {
    while (!text.empty() && isTrimmed(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}
/// The text without leading and trailing blanks, tabs, carriage returns and line feeds.
[[nodiscard]] constexpr std::string_view trim(std::string_view text) noexcept {
    text = trimLeft(text);
    while (!text.empty() && isTrimmed(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// ASCII lower-case copy.
[[nodiscard]] std::string toLower(std::string_view text);
/// True when both texts are equal after ASCII lowering.
[[nodiscard]] bool equalsNoCase(std::string_view left, std::string_view right) noexcept;
/// True when `text`, in any case, holds `lowered`, which is lower-case and not empty.
[[nodiscard]] bool containsNoCase(std::string_view text, std::string_view lowered) noexcept;

/// Splits on one character; empty fields are kept, so the result has one field more than separators.
[[nodiscard]] std::vector<std::string> splitOn(std::string_view text, char separator);
/// Splits at runs of white space; the fields are views into `text` and never empty.
[[nodiscard]] std::vector<std::string_view> splitBlank(std::string_view text);
/// The fields of `text` between `separator`, trimmed, without the empty ones.
[[nodiscard]] std::vector<std::string> splitTrimmed(std::string_view text, char separator);
/// The parts with `separator` between them.
[[nodiscard]] std::string join(const std::vector<std::string>& parts, std::string_view separator);

/// Replaces every occurrence of `from` (left to right, without overlap); an empty `from` changes nothing.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// The text as one word of a POSIX shell: in single quotes, an inner single quote written as '\''.
[[nodiscard]] std::string shellQuote(std::string_view text);

/// The text without a UTF-8 byte order mark at its very start: some editors put one in front of a file, where
/// it says how the file is encoded and is no part of its first line.
[[nodiscard]] constexpr std::string_view skipByteOrderMark(std::string_view text) noexcept {
    constexpr std::string_view mark = "\xef\xbb\xbf";
    return text.starts_with(mark) ? text.substr(mark.size()) : text;
}

/// Calls `take` with each line of a text as `splitLines` returns them.
template <class Take>
void forEachLine(std::string_view text, const Take& take) {
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = std::min(text.find('\n', begin), text.size());
        take(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

/// The number of lines that `splitLines` returns.
[[nodiscard]] std::size_t countLines(std::string_view text) noexcept;

/// The lines of a text as a line reader gives them: a final line needs no line end, an empty one behind the
/// last line feed is not produced, carriage returns stay. The views point into `text`.
[[nodiscard]] std::vector<std::string_view> splitLines(std::string_view text);

/// Calls the right alternative of a `std::visit`: `std::visit(Match{[](A) {...}, [](B) {...}}, variant)`.
template <class... Fs>
struct Match : Fs... {
    using Fs::operator()...;
};
template <class... Fs>
Match(Fs...) -> Match<Fs...>;

} // namespace morquill
