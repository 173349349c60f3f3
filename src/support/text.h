#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

/// Text is bytes: casing and character classes are ASCII, the
/// locale is ignored, and bytes above 0x7f are ordinary characters.
namespace morquill {

/// True for blank, tab, line feed, vertical tab, form feed and carriage return; false for 0x85 and 0xA0.
[[nodiscard]] constexpr bool isSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
/// `[0-9]`.
[[nodiscard]] constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
/// `[A-Za-z]`.
[[nodiscard]] constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
/// The bytes of words and names: `[A-Za-z0-9_]`.
[[nodiscard]] constexpr bool isWordChar(char c) noexcept {
    return isLetter(c) || isDigit(c) || c == '_';
}
/// `[A-Za-z_]`: the first byte of a word that is not a number.
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
/// An ASCII control character: a byte below the blank, or 0x7f.
[[nodiscard]] constexpr bool isControl(char c) noexcept {
    return (c >= '\0' && c < ' ') || c == '\x7f';
}
/// The byte in ASCII lower case.
[[nodiscard]] constexpr char lowerChar(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The place of the first byte from `at` on that is not white space; the end when there is none.
[[nodiscard]] constexpr std::size_t skipSpace(std::string_view text, std::size_t at = 0) noexcept {
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

/// True for what `trim` removes: blank, tab, carriage return and line feed.
[[nodiscard]] constexpr bool isTrimmed(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
/// The text without leading blanks, tabs, carriage returns and line
/// feeds. Inline, because every line passes through here several times.
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

/// The text without trailing white space.
[[nodiscard]] constexpr std::string_view dropTrailingSpace(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Returns a copy in ASCII lower case.
[[nodiscard]] std::string toLower(std::string_view text);
/// True when both texts are equal in ASCII lower case.
[[nodiscard]] bool equalsNoCase(std::string_view left, std::string_view right) noexcept;
/// True when `text`, in any case, contains `lowered`, which must be lower-case and not empty.
[[nodiscard]] bool containsNoCase(std::string_view text, std::string_view lowered) noexcept;

/// True when the text is one of the words.
template <std::size_t N>
[[nodiscard]] constexpr bool isOneOf(std::string_view text, const std::string_view (&words)[N]) noexcept {
    return std::find(std::begin(words), std::end(words), text) != std::end(words);
}
/// True when the text, in any ASCII case, is one of the words.
template <std::size_t N>
[[nodiscard]] bool isOneOfNoCase(std::string_view text, const std::string_view (&words)[N]) noexcept {
    return std::any_of(std::begin(words), std::end(words),
                       [text](std::string_view word) { return equalsNoCase(text, word); });
}

/// Splits at each separator; empty fields are kept, so there is one field more than separators.
[[nodiscard]] std::vector<std::string> splitOn(std::string_view text, char separator);
/// Splits at runs of white space; the fields are views into `text` and never empty.
[[nodiscard]] std::vector<std::string_view> splitBlank(std::string_view text);
/// Splits at each separator and trims the fields; empty ones are dropped.
[[nodiscard]] std::vector<std::string> splitTrimmed(std::string_view text, char separator);
/// Joins the parts with `separator` between them.
[[nodiscard]] std::string join(const std::vector<std::string>& parts, std::string_view separator);

/// Replaces every occurrence of `from` (left to right, without overlap); an empty `from` changes nothing.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// The text between single quotes, as messages show a name; quotes within it stay as they are.
[[nodiscard]] std::string singleQuoted(std::string_view text);
/// The text with its line feeds and carriage returns shown as `\n` and `\r`.
[[nodiscard]] std::string oneLine(std::string_view text);
/// True for a file name pattern: a text with one of the characters `*?[`.
[[nodiscard]] constexpr bool hasWildcard(std::string_view text) noexcept {
    return text.find_first_of("*?[") != std::string_view::npos;
}

/// Quotes the text as one word of a POSIX shell: in single quotes, with an inner one written as '\''.
[[nodiscard]] std::string shellQuote(std::string_view text);

/// The text without a UTF-8 byte order mark at its very start. Some editors put one at the start of a file to
/// mark its encoding; it is not part of the first line.
[[nodiscard]] constexpr std::string_view skipByteOrderMark(std::string_view text) noexcept {
    constexpr std::string_view mark = "\xef\xbb\xbf";
    return text.starts_with(mark) ? text.substr(mark.size()) : text;
}

/// Calls `take` with each line that `splitLines` would return.
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

/// The lines of a text, as views into it. The last line needs no line feed, no empty line follows a final
/// one, and carriage returns stay.
[[nodiscard]] std::vector<std::string_view> splitLines(std::string_view text);

} // namespace morquill
