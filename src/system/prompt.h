#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Questions to the user.
namespace morquill::system {

/// Reads the next line of standard input, without its line end; nothing at the end of input. Input after the
/// line is left for child processes, which inherit standard input. Pending output is written first.
[[nodiscard]] std::optional<std::string> readInputLine();

/// Reads one line and returns true for "y" or "yes" in any
/// case, false for anything else and at the end of input.
[[nodiscard]] bool askYesNo();

/// Prints the title, unless it is empty, and the prompt, and reads one line of numbers from 1 to `count`.
/// Returns zero-based indices, ascending, each once; words that are not such numbers are ignored.
[[nodiscard]] std::vector<std::size_t> promptIndexSelection(std::string_view title, std::size_t count);

} // namespace morquill::system
