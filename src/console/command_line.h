#pragma once

#include "console/messages.h"
#include "support/fault.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

/// Command lines, read by tables of options, and the one way to refuse one.
namespace morquill::console {

/// Consecutive words of a command line.
using Words = std::span<const char* const>;

/// The words of an argument vector from `first` on; none when there are fewer.
[[nodiscard]] Words wordsFrom(int argc, const char* const* argv, int first) noexcept;

/// Thrown for a command line that is refused. With an empty message, the caller shows the help instead.
class UsageError : public WholeTextError {
  public:
    explicit UsageError(ErrorTag tag, const std::string& message = {}) : WholeTextError(message), tag_(tag) {}

    [[nodiscard]] ErrorTag tag() const noexcept { return tag_; }
    [[nodiscard]] const std::string& message() const noexcept { return text(); }

  private:
    ErrorTag tag_;
};

/// Thrown when help is requested in the middle of the line.
class HelpRequest : public UsageError {
  public:
    HelpRequest() : UsageError(ErrorTag::none) {}
};

/// Writes the message of a refused command line as `reportError`
/// does, unless it is empty. Returns the exit status, 1.
int reportUsageError(const UsageError& error);

/// Returns how many of the words after an option are its values; nothing when too few are left.
using ValueCount = std::optional<std::size_t> (*)(Words following);

/// For an option without a value.
[[nodiscard]] std::optional<std::size_t> noValue(Words following) noexcept;
/// For an option with one value.
[[nodiscard]] std::optional<std::size_t> oneValue(Words following) noexcept;
/// For an option that takes the whole rest of the line, even an empty one.
[[nodiscard]] std::optional<std::size_t> restOfLine(Words following) noexcept;

/// One option: its word, its values and what it does. Every operation may throw `UsageError`.
template <class Options>
struct OptionRow {
    std::string_view word;
    ValueCount count;
    void (*apply)(Options& options, Words values);
    /// The message when a value is missing.
    std::string_view missingValue = {};
    ErrorTag tag = ErrorTag::plain; ///< precedes `missingValue`
    /// Refuses the option when it conflicts with what was read before; null when it conflicts with nothing.
    void (*check)(const Options& options) = nullptr;
};

/// Reads the words from left to right: an option of the table, matched exactly, with
/// its values by its row, any other word by `positional(words)`, which receives that
/// word and all after it and returns how many it took. Throws `UsageError`.
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
        const Words following = words.subspan(i + 1);
        const auto count = row->count(following);
        if (!count) {
            throw UsageError(row->tag, std::string(row->missingValue));
        }
        row->apply(options, following.first(*count));
        i += 1 + *count;
    }
}

/// The refusal of a word that no command knows.
[[nodiscard]] UsageError unknownArgument(std::string_view word);

} // namespace morquill::console
