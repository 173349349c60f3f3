#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

/// Stand-ins for commands that this build does not have yet. They keep the table whole and say so.
namespace morquill::frontend {

void printNotBuilt(std::string_view command);
[[nodiscard]] int refuseNotBuilt(std::string_view command);

/// A command word as template argument.
template <std::size_t N>
struct CommandWord {
    char text[N]{};
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is to be written as it is
    constexpr CommandWord(const char (&word)[N]) { std::copy_n(word, N, text); }
    [[nodiscard]] constexpr std::string_view view() const { return {text, N - 1}; }
};

/// Help of a missing command: one line on standard output.
template <CommandWord word>
void notBuiltHelp(std::string_view /*programPath*/) {
    printNotBuilt(word.view());
}

/// Run of a missing command: one line on standard error, status 1.
template <CommandWord word>
int notBuiltRun(int /*argc*/, char** /*argv*/) {
    return refuseNotBuilt(word.view());
}

} // namespace morquill::frontend
