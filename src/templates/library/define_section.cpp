#include "templates/library/define_section.h"

#include "support/text.h"

#include <algorithm>

namespace morquill::templates {

namespace {

/// Characters that may mean something to a YAML reader, so that a value with one is quoted.
constexpr std::string_view quotedCharacters = ":{}[]#,&*!|>'\"%@`";

} // namespace

std::vector<std::string> buildDefineLines(const std::vector<std::string>& names,
                                          const taskdsl::ValueMap& values) {
    std::vector<std::string> lines;
    for (const auto& name : names) {
        const auto found = values.find(name);
        const std::string_view value = found == values.end() ? std::string_view{} : found->second;
        const std::string entry = "  " + name + ": ";
        if (value.find('\n') != std::string_view::npos) {
            lines.push_back(entry + "|");
            for (const auto& line : splitOn(value, '\n')) {
                lines.push_back("    " + line);
            }
        } else if (value.find_first_of(quotedCharacters) != std::string_view::npos) {
            lines.push_back(entry + '"' + std::string(value) + '"');
        } else {
            lines.push_back(entry + std::string(value));
        }
    }
    return lines;
}

std::string buildDefineSection(const std::vector<std::string>& names, const taskdsl::ValueMap& values) {
    std::string section = "define:";
    for (const auto& line : buildDefineLines(names, values)) {
        section += '\n' + line;
    }
    return section;
}

std::string replaceDefineSection(std::string_view text, std::string_view section) {
    // A byte order mark stays at the very start.
    const auto body = skipByteOrderMark(text);
    const auto mark = text.substr(0, text.size() - body.size());
    const auto lines = splitOn(body, '\n');
    const auto begin =
        std::find_if(lines.begin(), lines.end(), [](const auto& line) { return trim(line) == "define:"; });
    if (begin == lines.end()) {
        return std::string(mark).append(section).append("\n\n").append(body);
    }
    const auto end = std::find_if(begin + 1, lines.end(), [](const auto& line) {
        const auto content = trim(line);
        return content.empty() || content.starts_with('$');
    });
    std::vector<std::string> result(lines.begin(), begin);
    result.emplace_back(section);
    result.emplace_back();
    result.insert(result.end(), end, lines.end());
    return std::string(mark).append(join(result, "\n"));
}

} // namespace morquill::templates
