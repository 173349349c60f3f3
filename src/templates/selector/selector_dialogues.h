#pragma once

#include "templates/selector/selector_state.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace morquill::templates {

/// The input and output of the selector: the terminal, or a script in tests.
struct SelectorConsole {
    std::function<void(std::string_view text)> print;
    std::function<void()> clearScreen;
    std::function<std::int32_t()> readKey;
    /// Reads one line, without its line end; nothing at the end of input.
    std::function<std::optional<std::string>()> readLine;
};

/// Whether the selector goes on after a dialogue.
enum class AfterDialogue : std::uint8_t { goOn, quit };

/// The result of a dialogue.
struct DialogueOutcome {
    SelectorState state;
    AfterDialogue after = AfterDialogue::goOn;
};

/// Sets variables in a dialogue line by line. The selector ends when the input ends while a key is awaited.
[[nodiscard]] DialogueOutcome editVariables(SelectorState state, const SelectorConsole& console);

/// Asks for a file name and writes the task file. The selector ends when the user wants no more.
[[nodiscard]] DialogueOutcome generateTaskFile(SelectorState state, const SelectorConsole& console);

/// Shows screens and takes keys until the user quits. Meanwhile, the cursor is hidden.
void runSelectorLoop(SelectorState state, const SelectorConsole& console);

} // namespace morquill::templates
