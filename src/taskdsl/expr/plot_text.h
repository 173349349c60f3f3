#pragma once

#include "support/number.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text of the plot and derive languages below the level of statements: quotes, nesting, words, options.
namespace morquill::taskdsl::plot {

/// The line without its comment, trimmed. A `#` outside quotes and snapshots begins a comment; a
/// backslash outside single quotes protects it.
[[nodiscard]] std::string_view stripPlotComment(std::string_view line) noexcept;

/// The words of the text: split at white space outside quotes and parentheses, quotes kept. Views into
/// `text`.
[[nodiscard]] std::vector<std::string_view> splitPlotWords(std::string_view text);

/// A word of a statement and the trimmed text after it.
struct FirstWord {
    std::string_view word; ///< empty when there is none
    std::string_view rest;
};
/// The first word by the rule of `splitPlotWords`. Views into `text`.
[[nodiscard]] FirstWord splitFirstWord(std::string_view text) noexcept;

/// One option of a statement; both are views.
struct KeywordOption {
    std::string_view keyword; ///< as in the given list
    std::string_view value;   ///< trimmed, may be empty
};

/// A statement taken apart at its option keywords.
struct KeywordOptions {
    std::string_view head;              ///< trimmed text before the first option
    std::vector<KeywordOption> options; ///< in text order, repeated keywords each
};

/// Splits at the keywords (given in lower case, found in any case) that begin a word outside quotes,
/// snapshots and parentheses. A keyword ends at the first byte that is no letter, digit or `_`.
[[nodiscard]] KeywordOptions splitKeywordOptions(std::string_view text,
                                                 std::initializer_list<std::string_view> keywords);

/// True for a word, in any case, that begins an option after a word of free text.
[[nodiscard]] bool isPlotOptionWord(std::string_view word) noexcept;

/// True when a statement goes on after a line: its text, not empty, ends in an operator or a comma.
[[nodiscard]] bool endsInOperator(std::string_view text) noexcept;

/// Place of the first `wanted` outside quotes, snapshots and parentheses; npos when there is none.
[[nodiscard]] std::size_t findAtLevelZero(std::string_view text, char wanted) noexcept;

/// The trimmed text without one surrounding pair of equal quotes. In double quotes \n, \r and \t are decoded
/// and any other escaped byte stands for itself; in single quotes every byte stands for itself.
[[nodiscard]] std::string unquotePlotText(std::string_view text);

/// The text as a double-quoted literal; backslash, double quote, line feed, carriage return and tab are
/// escaped.
[[nodiscard]] std::string quotePlotText(std::string_view text);

/// The trimmed text in front of a ":" at the end; nothing when the text does not end in one.
[[nodiscard]] std::optional<std::string_view> stripTrailingColon(std::string_view text) noexcept;

/// A letter or `_` followed by letters, digits and `_`.
[[nodiscard]] bool isPlotIdentifier(std::string_view text) noexcept;

/// The number that takes up the whole trimmed text (`strtod` semantics, so "nan" and "inf" are numbers).
[[nodiscard]] std::optional<double> parsePlotNumber(std::string_view text);

/// The significant digits that tell any two doubles apart.
inline constexpr int exactDigits = 17;

/// The number as plots and derives print it: 15 significant digits, 17 where 15 round up to infinity.
[[nodiscard]] PrintedNumber printPlotNumber(double value);
[[nodiscard]] std::string plotNumberText(double value);

/// What is said of a number that does not read back.
[[nodiscard]] std::string plotNumberLoss(double value);

} // namespace morquill::taskdsl::plot
