#include "project/help_text.h"

#include "frontend/console.h"

#include <string>

namespace morquill::project {

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
        line += green ? frontend::greenText(piece) : piece;
        if (mark == std::string_view::npos) {
            return line;
        }
        text.remove_prefix(mark + 1);
        green = !green;
    }
}

} // namespace

void printHelpLines(std::span<const HelpLine> lines, std::string_view programPath) {
    const std::string program = frontend::toolBaseName(programPath);
    std::string help;
    for (const HelpLine& line : lines) {
        switch (line.style) {
        case HelpStyle::plain:
            help += plainLine(line.text, program);
            break;
        case HelpStyle::heading:
            help += frontend::cyanHeading(line.text);
            break;
        case HelpStyle::olderHeading:
            help += frontend::yellowHeading(line.text);
            break;
        }
        help += '\n';
    }
    frontend::writeOut(help);
}

} // namespace morquill::project
