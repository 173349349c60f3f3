#pragma once

#include "support/text.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// Closed vocabularies: words and the values that they mean.
namespace morquill {

/// A word and its value.
template <class Value>
struct WordRow {
    std::string_view word;
    Value value;
};

/// A vocabulary, row by row. The first word of a value is its name; the others are aliases, understood but
/// never written. Made by `wordTable`.
template <class Value, std::size_t count>
class WordTable {
  public:
    constexpr explicit WordTable(const WordRow<Value> (&rows)[count]) : rows_(std::to_array(rows)) {}

    /// The value of a word, in any case; nothing for a word that is not in the table.
    [[nodiscard]] std::optional<Value> find(std::string_view word) const noexcept {
        return valueWhere([word](const Row& row) { return equalsNoCase(row.word, word); });
    }
    /// The value of a word spelled exactly as in the table; nothing for any other.
    [[nodiscard]] constexpr std::optional<Value> findExact(std::string_view word) const noexcept {
        return valueWhere([word](const Row& row) { return row.word == word; });
    }
    /// The row of the longest word, in any case, with which the text begins; null when there is none.
    [[nodiscard]] const WordRow<Value>* atFront(std::string_view text) const noexcept {
        const Row* found = nullptr;
        for (const Row& row : rows_) {
            if ((found == nullptr || row.word.size() > found->word.size()) &&
                equalsNoCase(text.substr(0, row.word.size()), row.word)) {
                found = &row;
            }
        }
        return found;
    }
    /// The name of the value; nothing for a value without a word.
    [[nodiscard]] constexpr std::optional<std::string_view> wordOf(Value value) const noexcept {
        for (const Row& row : rows_) {
            if (row.value == value) {
                return row.word;
            }
        }
        return std::nullopt;
    }
    /// The name of the value; the word of the first row for a value without one.
    [[nodiscard]] constexpr std::string_view nameOf(Value value) const noexcept {
        return wordOf(value).value_or(rows_.front().word);
    }

    [[nodiscard]] constexpr auto begin() const noexcept { return rows_.begin(); }
    [[nodiscard]] constexpr auto end() const noexcept { return rows_.end(); }

  private:
    using Row = WordRow<Value>;

    template <class Fits>
    [[nodiscard]] constexpr std::optional<Value> valueWhere(const Fits& fits) const noexcept {
        for (const Row& row : rows_) {
            if (fits(row)) {
                return row.value;
            }
        }
        return std::nullopt;
    }

    std::array<Row, count> rows_;
};

/// Makes a table of rows: `wordTable<Colour>({{"red", Colour::red}, {"scarlet", Colour::red}})`.
template <class Value, std::size_t count>
[[nodiscard]] constexpr WordTable<Value, count> wordTable(const WordRow<Value> (&rows)[count]) {
    return WordTable<Value, count>(rows);
}

} // namespace morquill
