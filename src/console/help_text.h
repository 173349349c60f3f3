#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// Help texts as tables.
namespace morquill::console {

enum class HelpStyle : std::int32_t { plain = 0, heading, olderHeading };

/// One line of a help. In plain lines the text between backticks is green and "@" stands for the program.
struct HelpLine {
    HelpStyle style;
    std::string_view text;
};

/// Writes the lines to standard output; `programPath` is the program as it was called.
void printHelpLines(std::span<const HelpLine> lines, std::string_view programPath);

} // namespace morquill::console
