#pragma once

#include "templates/selector/selector_state.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace morquill::templates {

/// What the selector speaks through: the terminal, or a script in tests.
struct SelectorConsole {
    std::function<void(std::string_view text)> print;
    std::function<void()> clearScreen;
    std::function<std::int32_t()> readKey;
    /// One line without its line end; nothing at the end of input.
    std::function<std::optional<std::string>()> readLine;
};

/// The line-by-line dialogue that sets variables. Sets `quit` when the input ended at a key.
[[nodiscard]] SelectorState editVariables(SelectorState state, const SelectorConsole& console, bool& quit);

/// Asks for a file name and writes the task file. Sets `quit` when the user is done.
[[nodiscard]] SelectorState generateTaskFile(SelectorState state, const SelectorConsole& console, bool& quit);

/// Shows screens and takes keys until the user leaves. The cursor is hidden meanwhile and shown afterwards.
void runSelectorLoop(SelectorState state, const SelectorConsole& console);

} // namespace morquill::templates
