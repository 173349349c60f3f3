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

/// What follows a dialogue: the selector goes on or ends, too.
enum class AfterDialogue : std::uint8_t { goOn, quit };

/// What a dialogue leaves.
struct DialogueEnd {
    SelectorState state;
    AfterDialogue after = AfterDialogue::goOn;
};

/// The line-by-line dialogue that sets variables. The selector ends when the input does at a key.
[[nodiscard]] DialogueEnd editVariables(SelectorState state, const SelectorConsole& console);

/// Asks for a file name and writes the task file. The selector ends when the user is done.
[[nodiscard]] DialogueEnd generateTaskFile(SelectorState state, const SelectorConsole& console);

/// Shows screens and takes keys until the user leaves. The cursor is hidden meanwhile and shown afterwards.
void runSelectorLoop(SelectorState state, const SelectorConsole& console);

} // namespace morquill::templates
