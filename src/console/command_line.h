#pragma once

#include "console/messages.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

/// Command lines read by tables, and the one way to refuse one.
namespace morquill::console {

/// Words of a command line.
using Words = std::span<const char* const>;

/// The words of an argument vector from `first` on; none when there are fewer.
[[nodiscard]] Words wordsFrom(int argc, const char* const* argv, int first) noexcept;

/// A command line that is refused. An empty message leaves it to the caller to show the help.
class UsageError : public std::runtime_error {
  public:
    explicit UsageError(ErrorTag tag, const std::string& message = {})
        : std::runtime_error(message), tag_(tag), message_(message) {}

    [[nodiscard]] ErrorTag tag() const noexcept { return tag_; }
    [[nodiscard]] const std::string& message() const noexcept { return message_; }

  private:
    ErrorTag tag_;
    std::string message_; ///< with all its bytes, as words may hold any but NUL
};

/// The help was asked for in the middle of the line.
class HelpRequest : public UsageError {
  public:
    HelpRequest() : UsageError(ErrorTag::none) {}
};

/// Writes the message of a refused command line as `reportError` does, an empty one not at all. Returns the
/// exit status, 1.
int reportUsageError(const UsageError& error);

/// How many of the words behind an option are its values; nothing when too few are left.
using ValueCount = std::optional<std::size_t> (*)(Words behind);

[[nodiscard]] std::optional<std::size_t> noValue(Words behind) noexcept;
[[nodiscard]] std::optional<std::size_t> oneValue(Words behind) noexcept;
/// All that is left of the line, also when that is nothing.
[[nodiscard]] std::optional<std::size_t> restOfLine(Words behind) noexcept;

/// One option: a word, what it takes, and what it does. All operations throw `UsageError`.
template <class Options>
struct OptionRow {
    std::string_view word;
    ValueCount count;
    void (*apply)(Options& options, Words values);
    /// Refuses the command line when a value is missing.
    std::string_view missingValue = {};
    ErrorTag tag = ErrorTag::plain; ///< in front of `missingValue`
    /// Refuses the option where what was read before does not go with it; null when it goes with everything.
    void (*check)(const Options& options) = nullptr;
};

/// Reads the words from left to right: a word of the table with its values by its row, every other one by
/// `positional(words)`, which is given that word with all behind it and returns how many it took. A word of
/// the table is compared letter by letter.
template <class Options, class Positional>
void readWords(Words words, std::type_identity_t<std::span<const OptionRow<Options>>> table, Options& options,
               const Positional& positional) {
    for (std::size_t i = 0; i < words.size();) {
        const auto row = std::find_if(table.begin(), table.end(),
                                      [&](const auto& candidate) { return candidate.word == words[i]; });
        if (row == table.end()) {
            i += positional(words.subspan(i));
            continue;
        }
        if (row->check != nullptr) {
            row->check(options);
        }
        const Words behind = words.subspan(i + 1);
        const auto count = row->count(behind);
        if (!count) {
            throw UsageError(row->tag, std::string(row->missingValue));
        }
        row->apply(options, behind.first(*count));
        i += 1 + *count;
    }
}

/// The message about a word that no command knows.
[[nodiscard]] UsageError unknownArgument(std::string_view word);

} // namespace morquill::console
