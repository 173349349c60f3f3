#include "console/help_text.h"

#include "console/console.h"
#include "support/text.h"

#include <string>

namespace morquill::console {

namespace {

/// The text with the program's name in place of every "@" that no letter follows.
std::string withProgram(std::string_view text, const std::string& program) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '@' && (i + 1 == text.size() || !isLetter(text[i + 1]))) {
            shown += program;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

std::string plainLine(std::string_view line, const std::string& program) {
    std::string shown;
    for (bool green = false;; green = !green) {
        const auto mark = line.find('`');
        const std::string piece = withProgram(line.substr(0, mark), program);
        shown += green ? greenText(piece) : piece;
        if (mark == std::string_view::npos) {
            return shown;
        }
        line.remove_prefix(mark + 1);
    }
}

} // namespace

void printHelp(std::string_view text, std::string_view programPath) {
    constexpr std::string_view heading = "# ";
    constexpr std::string_view olderHeading = "## ";
    const std::string program = toolBaseName(programPath);
    std::string help;
    for (const auto line : splitLines(text)) {
        if (line.starts_with(heading)) {
            help += cyanHeading(line.substr(heading.size()));
        } else if (line.starts_with(olderHeading)) {
            help += yellowHeading(line.substr(olderHeading.size()));
        } else {
            help += plainLine(line, program);
        }
        help += '\n';
    }
    writeOut(help);
}

} // namespace morquill::console
