#pragma once

#include "taskdsl/base/source_span.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How the text of a derive statement is taken apart. "Top level" is outside quotes, `{{ }}` and parentheses;
/// a backslash inside either kind of quotes protects the next byte, as it does for the statement reader and
/// in expressions. All views point into the argument and are trimmed.
namespace morquill::taskdsl::derive {

/// The place after the quoted text or snapshot that begins at `at`, the end of the text if it is not closed;
/// `at` itself when neither begins there.
[[nodiscard]] std::size_t skipOpaque(std::string_view text, std::size_t at) noexcept;

/// The place after the parenthesis that closes the one at `at`; npos when it is not closed.
[[nodiscard]] std::size_t skipParentheses(std::string_view text, std::size_t at) noexcept;

/// A text split in two.
struct Halves {
    std::string_view left;
    std::string_view right;
};

/// Splits at the first top-level "="; nothing when there is none.
[[nodiscard]] std::optional<Halves> splitAtEquals(std::string_view text) noexcept;

/// Whether square brackets shield a word as parentheses do: they do around the values of `in [...]`.
enum class Brackets { ordinary, shielding };

/// Splits at the first top-level `word` (lower case; found in any case) that begins at `from` or later;
/// nothing when there is none. Words are bounded by white space, parentheses, brackets, quotes, commas, "="
/// and snapshot braces, so that `to` inside a path such as `out/to/x.csv` is none.
[[nodiscard]] std::optional<Halves> splitAtWord(std::string_view text, std::string_view word,
                                                std::size_t from = 0,
                                                Brackets brackets = Brackets::ordinary) noexcept;

/// The entries between top-level commas; one entry more than commas, entries may be empty.
[[nodiscard]] std::vector<std::string_view> splitAtCommas(std::string_view text);

/// The trimmed inside of a text that is wrapped in one matching pair of parentheses; nothing for other texts.
[[nodiscard]] std::optional<std::string_view> insideParentheses(std::string_view text) noexcept;

/// The text unquoted. Throws "<label> cannot be empty" when nothing is left.
[[nodiscard]] std::string readLabelledText(std::string_view text, std::string_view label,
                                           const SourceSpan& span);

/// Returns the text, which must be a simple identifier; throws the diagnostic with `message` otherwise.
[[nodiscard]] std::string requireIdentifier(std::string_view text, std::string_view message,
                                            const SourceSpan& span);

} // namespace morquill::taskdsl::derive
