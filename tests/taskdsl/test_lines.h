#pragma once

#include "support/text.h"
#include "taskdsl/source_line.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// The lines of a text as the parser makes them.
inline std::vector<SourceLine> linesOf(std::string_view text, const SharedText& path = "t.mq") {
    std::vector<SourceLine> lines;
    for (const auto line : splitLines(text)) {
        lines.push_back({std::string(line), path, static_cast<std::uint32_t>(lines.size() + 1)});
    }
    return lines;
}

/// The texts of lines, each with a line end.
inline std::string textOf(const std::vector<SourceLine>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line.text + "\n";
    }
    return text;
}

/// The message that a call throws; "no fault" when it throws none.
template <class F>
std::string messageOf(F call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no fault";
}

} // namespace morquill::taskdsl
