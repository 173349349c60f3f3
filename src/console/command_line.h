#pragma once

#include "console/console.h"
#include "console/messages.h"
#include "support/fault.h"
#include "support/text.h"
#include "support/word_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

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

/// A refusal whose message has the plain tag.
[[nodiscard]] UsageError plainRefusal(const std::string& message);
/// A refusal whose message has the tag in red.
[[nodiscard]] UsageError colouredRefusal(const std::string& message);
/// A refusal whose message has no tag.
[[nodiscard]] UsageError bareRefusal(const std::string& message);

/// Writes the message of a refused command line as `reportError`
/// does, unless it is empty. Returns the exit status, 1.
int reportUsageError(const UsageError& error);

/// Which refusals are followed by the help: all, or those without a message.
enum class HelpAfter : std::uint8_t { anyRefusal, emptyRefusal };

/// Reads and runs a command line by `run()` and returns its exit status. A `HelpRequest` shows the help and
/// returns 0; any other `UsageError` is reported, shows the help where it should, and returns 1.
template <class Run>
int runCommandLine(const Run& run, void (*help)(std::string_view programPath), std::string_view programPath,
                   HelpAfter helpAfter) {
    try {
        return run();
    } catch (const HelpRequest&) {
        help(programPath);
        return 0;
    } catch (const UsageError& error) {
        const int status = reportUsageError(error);
        if (helpAfter == HelpAfter::anyRefusal || error.message().empty()) {
            help(programPath);
        }
        return status;
    }
}

/// Reads a command line by `read()` and returns what it returns. Where the words hold a help word, a refusal
/// is reported and becomes a `HelpRequest`. Throws `UsageError`.
template <class Read>
auto readOrHelp(Words words, const Read& read) {
    try {
        return read();
    } catch (const UsageError& error) {
        if (std::none_of(words.begin(), words.end(), isHelpToken)) {
            throw;
        }
        reportUsageError(error);
        throw HelpRequest();
    }
}

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

/// How a report is written, and the words for it on a command line.
enum class ReportFormat : std::uint8_t { text, json };
inline constexpr auto reportFormats =
    wordTable<ReportFormat>({{"text", ReportFormat::text}, {"json", ReportFormat::json}});

/// The refusal of a word that no command knows.
[[nodiscard]] UsageError unknownArgument(std::string_view word);

/// An operation of an option: throws `HelpRequest`.
template <class Options>
[[noreturn]] void askHelp(Options& /*options*/, Words /*values*/) {
    throw HelpRequest();
}

/// Takes the first word as the only path of the line and returns 1, the number of words taken. Throws
/// `UsageError` when there is a path already: its message is `refusal` and the word.
std::size_t takeOnePath(std::optional<std::string>& path, Words words, ErrorTag tag,
                        std::string_view refusal);

/// What a word means in a table of names.
template <class Row>
struct PrefixMatch {
    const Row* row = nullptr;       ///< null when no row or more than one fits
    std::vector<std::string> names; ///< of all rows that fit
};

/// Returns the first row whose `name` is the word in lower case; without one, the rows whose names begin with
/// it, in any case. An empty word fits every row.
template <class Table>
[[nodiscard]] auto findByPrefix(const Table& table, std::string_view word) {
    using Row = std::remove_cvref_t<decltype(*std::begin(table))>;
    const std::string lowered = toLower(word);
    PrefixMatch<Row> match;
    for (const Row& row : table) {
        if (row.name == lowered) {
            return PrefixMatch<Row>{&row, {std::string(row.name)}};
        }
        if (toLower(row.name).starts_with(lowered)) {
            match.row = &row;
            match.names.emplace_back(row.name);
        }
    }
    if (match.names.size() > 1) {
        match.row = nullptr;
    }
    return match;
}

/// The text of the refusal of a word that is the prefix of several names; `what` says what they are.
[[nodiscard]] std::string ambiguousPrefix(std::string_view what, std::string_view word,
                                          const std::vector<std::string>& names);

} // namespace morquill::console
