#pragma once

#include "support/shared.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// Values by key, in byte order.
using ValueMap = std::map<std::string, std::string, std::less<>>;
/// Keys of a `ValueMap`.
using KeySet = std::set<std::string, std::less<>>;

/// Whether a text may still hold a `[key]` that a later substitution replaces.
enum class Placeholders : std::uint8_t { refused, allowed };

/// Replaces every `[key]` whose key is in `values`; unknown keys stay as written,
/// and what was put in is not scanned again. A key is one or more of letters, digits, `_`,
/// `.` and `-` (pattern `\[([A-Za-z0-9_.\-]+)\]`). Throws `DiagnosticError` when the text would grow by more
/// than `limits::substitutedText` bytes.
[[nodiscard]] std::string substituteBrackets(std::string_view text, const ValueMap& values);

/// The same in place; a text without a `[` costs a scan and no copy. Returns whether the text changed.
bool substituteInto(std::string& text, const ValueMap& values);
/// The same; others who share the text keep the old one.
bool substituteInto(SharedText& text, const ValueMap& values);

/// A `[key]` in a text: the key, and the places of its brackets.
struct Bracket {
    std::size_t open = std::string_view::npos;
    std::size_t after = 0;
    std::string_view key;
};
/// The key of the `[key]` that begins at `open`; empty when none begins there.
[[nodiscard]] std::string_view bracketKeyAt(std::string_view text, std::size_t open) noexcept;
/// The next `[key]` from `begin` on; its `open` is npos when there is none.
[[nodiscard]] Bracket nextBracket(std::string_view text, std::size_t begin) noexcept;

/// True when a `[key]` is in the text.
[[nodiscard]] bool holdsBracketKey(std::string_view text) noexcept;

/// The keys in brackets, in order and with repetitions.
[[nodiscard]] std::vector<std::string> bracketKeys(std::string_view text);

} // namespace morquill::taskdsl
