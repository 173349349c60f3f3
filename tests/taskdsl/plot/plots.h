#pragma once

#include "support/text.h"
#include "taskdsl/diagnostic.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/render.h"
#include "taskdsl/scan.h"

#include "without_spans.h"

#include <algorithm>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Plots from text, for the tests and the fuzzer of the plot language.
namespace morquill::taskdsl::plot {

/// The block that `text` holds: a header line beginning "@plot" (file level) or "%plot" (of the task
/// `owner`), then the body up to a line "@end", in the file "a.mq" from line 1.
inline PlotBlock blockOf(std::string_view text, std::string_view owner = "opt") {
    PlotBlock block;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        const auto cleaned = cleanLine(line);
        if (++number > 1 && cleaned == "@end") {
            break;
        }
        if (number > 1) {
            block.captured.lines.push_back({std::string(line), "a.mq", number});
            continue;
        }
        const bool ofTask = cleaned.starts_with('%');
        block.scope = ofTask ? PlotScope::task : PlotScope::project;
        block.ownerTask = ofTask ? owner : "";
        block.captured.header = trim(cleaned.substr(std::min<std::size_t>(cleaned.size(), 5)));
        block.captured.span = spanOfLine("a.mq", number, line);
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

/// A plot in print, and whether the law of printing holds: the text reads as the same plot, or one warning
/// of one line says that it does not.
struct ReadBack {
    std::string text;
    std::vector<std::string> warnings;
    bool equal = false;

    [[nodiscard]] bool lawful() const {
        return equal ? warnings.empty()
                     : warnings.size() == 1 && warnings.front().find('\n') == std::string::npos;
    }
};

inline ReadBack readBack(const PlotSpec& plot) {
    ReadBack result;
    result.text =
        renderPlot(plot, "", [&](const std::string& warning) { result.warnings.push_back(warning); });
    try {
        const auto again = parsePlot(blockOf(result.text, plot.ownerTask));
        result.equal = withoutSpans(again) == withoutSpans(plot);
    } catch (const DiagnosticError&) {
        result.equal = false;
    }
    return result;
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
