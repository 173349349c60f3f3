#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Questions to the user.
namespace morquill::system {

/// The next line of standard input without its line end; nothing at the end of input. What stands behind the
/// line is left for the children, which inherit standard input. Pending output is written first.
[[nodiscard]] std::optional<std::string> readInputLine();

/// Reads one line: true for "y" or "yes" in any case, false for everything else, also for the end of input.
[[nodiscard]] bool askYesNo();

/// A decimal integer, with or without a sign, that takes up the whole piece.
[[nodiscard]] std::optional<int> readIndex(std::string_view piece) noexcept;

/// Prints the title, if there is one, and the prompt, and reads one line of numbers from 1 to `count`. Gives
/// zero-based indices, ascending, each once; whatever is no such number is passed over.
[[nodiscard]] std::vector<std::size_t> promptIndexSelection(std::string_view title, std::size_t count);

} // namespace morquill::system
