// Any bytes as a plot block: the first line is the header ("@plot ..." or "%plot ..."), the rest its body.
// What is read prints, and where every name that is printed bare is a plain word the print reads back and
// prints as itself.

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/plot/plot_parser.h"
#include "taskdsl/plot/render.h"
#include "taskdsl/plot/substitute_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

using namespace morquill;
using namespace morquill::taskdsl;

namespace {

plot::PlotBlock blockOf(std::string_view text) {
    plot::PlotBlock block;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        if (++number > 1) {
            if (trim(line) != "@end") { // never part of a body
                block.captured.lines.push_back({std::string(line), "a.mq", number});
            }
            continue;
        }
        block.scope = line.starts_with('%') ? plot::PlotScope::task : plot::PlotScope::project;
        block.ownerTask = line.starts_with('%') ? "opt" : "";
        block.captured.header = std::string(trim(line.substr(std::min<std::size_t>(line.size(), 5))));
        block.captured.span = spanOfLine("a.mq", number, line);
    }
    return block;
}

/// A word that means itself wherever a plot prints a bare one: no quotes, blanks, operators at the end or
/// brackets, and no word that begins an option.
bool isPlain(const std::string& text) {
    static const std::vector<std::string> options{
        "label", "unit", "log",  "scale", "axis", "style", "value", "task",   "multiplicity",
        "first", "from", "root", "state", "s",    "lower", "below", "higher", "above"};
    const bool wordLike = std::all_of(text.begin(), text.end(), [](char c) {
        return isLetter(c) || isDigit(c) || c == '_' || c == '-' || c == '/';
    });
    return wordLike && (text.empty() || isLetter(text.front())) && (text.empty() || isLetter(text.back())) &&
           std::find(options.begin(), options.end(), toLower(text.substr(0, text.find_first_of("-/")))) ==
               options.end();
}

/// False for trees whose print is taken apart at an option word or holds a number that reads back as a name.
bool isPlain(const plot::ExprRef& expression) {
    bool plain = true;
    (void)plot::mapExpression(expression, [&](const plot::ExprRef& node) {
        std::visit(
            Match{[&](const plot::NumberExpr& number) { plain = plain && std::isfinite(number.value); },
                  [&](const plot::IdentifierExpr& identifier) { plain = plain && isPlain(identifier.name); },
                  [&](const plot::CallExpr& call) { plain = plain && isPlain(call.name); },
                  [](const auto&) {}},
            node->node);
        return node;
    });
    return plain;
}

bool isPlain(double value) {
    // 15 digits may round the bounds of a range together.
    return !std::isnan(value) && value == std::round(value) && std::abs(value) < 1e15;
}
bool isPlain(const plot::PlotSeries& series) {
    return isPlain(series.expression) && isPlain(series.unit);
}
bool isPlain(const plot::BarrierPoint& point) {
    return isPlain(point.id) && isPlain(point.value);
}
bool isPlain(const plot::ThresholdLine& line) {
    return isPlain(line.property) && isPlain(line.unit) && isPlain(line.value);
}
bool isPlain(const plot::PlotColumn& column) {
    return isPlain(column.id);
}
bool isPlain(const plot::ExcitedArrow& arrow) {
    return isPlain(arrow.sourceColumn) && isPlain(arrow.targetColumn) && isPlain(arrow.relativeColumn);
}
template <class T>
bool isPlain(const std::vector<T>& list) {
    return std::all_of(list.begin(), list.end(), [](const T& entry) { return isPlain(entry); });
}
template <class... Parts>
bool allPlain(const Parts&... parts) {
    return (isPlain(parts) && ...);
}

bool isPlain(const plot::PlotSpec& spec) {
    const bool data = std::visit(
        Match{[](const plot::BarrierPlotData& d) {
                  // An empty unit is not printed, and what is not written is kcal/mol.
                  return allPlain(d.points, d.relativePoint, d.unit) && !d.unit.empty();
              },
              [](const plot::ConvergencePlotData& d) { return allPlain(d.x, d.series, d.thresholds); },
              [](const plot::CurvePlotData& d) { return allPlain(d.x, d.series); },
              [](const plot::SpectrumPlotData& d) {
                  return allPlain(d.x, d.y, d.fwhm, d.fwhmUnit, d.rangeLow, d.rangeHigh);
              },
              [](const plot::ScatterPlotData& d) { return allPlain(d.x, d.y); },
              [](const plot::HeatmapPlotData& d) { return allPlain(d.x, d.y, d.z); },
              [](const plot::HistogramPlotData& d) { return allPlain(d.x, d.rangeLow, d.rangeHigh); },
              [](const plot::BarPlotData& d) { return allPlain(d.x, d.y); },
              [](const plot::ErrorbarPlotData& d) { return allPlain(d.x, d.y, d.yerr); },
              [](const plot::FrontierPlotData& d) { return allPlain(d.columns, d.orbitals, d.unit); },
              [](const plot::ExcitedPlotData& d) { return allPlain(d.columns, d.arrows, d.unit); }},
        spec.data);
    // "lines" is the style that is left out, so a kind with another default does not keep it; a selector
    // given behind a bare `from derived` may be none that the printed call takes.
    const bool ownStyle = spec.kind == plot::PlotKind::bar || spec.kind == plot::PlotKind::errorbar;
    const bool derived = spec.sourceKind == plot::PlotSourceKind::derived;
    return data && isPlain(spec.name) && (derived || isPlain(spec.sourceArgument)) &&
           !(ownStyle && spec.style == plot::PlotStyle::lines) &&
           !(derived && spec.sourceArgument.find('.') - 1 >= spec.sourceArgument.size() - 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    plot::PlotSpec spec;
    try {
        spec = plot::parsePlot(blockOf({reinterpret_cast<const char*>(data), size}));
    } catch (const DiagnosticError&) {
        return 0;
    }
    const auto printed = plot::renderPlot(spec, "");
    const bool faithful = isPlain(spec);
    plot::substitutePlot(spec, {{"key", "value"}});
    (void)plot::renderPlot(spec, "  ");
    if (faithful && plot::renderPlot(plot::parsePlot(blockOf(printed)), "") != printed) {
        std::abort();
    }
    return 0;
}
