#pragma once

#include "support/text.h"
#include "taskdsl/diagnostic.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/render.h"

#include <string>
#include <string_view>

/// Plots from text, for the tests of the plot language.
namespace morquill::taskdsl::plot {

/// The block that `text` holds: a header line beginning "@plot" (file level) or "%plot" (of the task "opt"),
/// then the body, in the file "a.mq" from line 1. A last line "@end" is left out.
inline PlotBlock blockOf(std::string_view text) {
    PlotBlock block;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        ++number;
        if (number > 1 && trim(line) != "@end") {
            block.captured.lines.push_back({std::string(line), "a.mq", number});
        } else if (number == 1) {
            const auto header = trim(line);
            block.scope = header.starts_with('%') ? PlotScope::task : PlotScope::project;
            block.ownerTask = header.starts_with('%') ? "opt" : "";
            block.captured.header = std::string(trim(header.substr(5)));
            block.captured.span = spanOfLine("a.mq", number, line);
        }
    }
    return block;
}

inline PlotSpec parsed(std::string_view text) {
    return parsePlot(blockOf(text));
}

/// What a plot prints as once it has been read.
inline std::string reprinted(std::string_view text) {
    return renderPlot(parsed(text), "");
}

/// The message that reading the plot ends with, place included.
inline std::string faultOf(std::string_view text) {
    try {
        (void)parsed(text);
    } catch (const DiagnosticError& error) {
        return error.what();
    }
    return "no fault";
}

} // namespace morquill::taskdsl::plot
