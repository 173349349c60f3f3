#include "console/help_text.h"

#include "console/console.h"

#include <string>

namespace morquill::console {

namespace {

std::string plainLine(std::string_view text, const std::string& program) {
    std::string line;
    bool green = false;
    while (true) {
        const auto mark = text.find('`');
        std::string piece(text.substr(0, mark));
        if (const auto place = piece.find('@'); place != std::string::npos) {
            piece.replace(place, 1, program);
        }
        line += green ? console::greenText(piece) : piece;
        if (mark == std::string_view::npos) {
            return line;
        }
        text.remove_prefix(mark + 1);
        green = !green;
    }
}

} // namespace

void printHelpLines(std::span<const HelpLine> lines, std::string_view programPath) {
    const std::string program = console::toolBaseName(programPath);
    std::string help;
    for (const HelpLine& line : lines) {
        switch (line.style) {
        case HelpStyle::plain:
            help += plainLine(line.text, program);
            break;
        case HelpStyle::heading:
            help += console::cyanHeading(line.text);
            break;
        case HelpStyle::olderHeading:
            help += console::yellowHeading(line.text);
            break;
        }
        help += '\n';
    }
    console::writeOut(help);
}

} // namespace morquill::console
