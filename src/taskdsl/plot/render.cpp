#include "taskdsl/plot/render.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/printer.h"
#include "taskdsl/plot/reading.h"
#include "taskdsl/plot/render_data.h"
#include "taskdsl/plot/validate.h"

#include <algorithm>

namespace morquill::taskdsl::plot {

namespace {

constexpr bool isLineBreak(char c) noexcept {
    return c == '\n';
}

/// The text within one line.
std::string inOneLine(const std::string& text) {
    if (text.find_first_of("\n\r") == std::string::npos) {
        return text;
    }
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    }
    return result;
}

/// Why a text that is printed bare reads as something else.
std::string strayText(std::string_view what, std::string_view text) {
    const std::string subject = "the " + std::string(what);
    if (text.empty()) {
        return subject + " is empty";
    }
    if (std::any_of(text.begin(), text.end(), isLineBreak)) {
        return subject + " holds a line break";
    }
    if (std::any_of(text.begin(), text.end(), isSpace)) {
        return subject + " holds a blank";
    }
    return subject + " '" + std::string(text) + "' is printed without quotes";
}

/// The header names the plot by its second word; what follows is skipped.
bool nameReadsBack(const PlotSpec& plot) {
    const std::string& name = plot.name;
    if (Printer::isPlainWord(name)) {
        return true;
    }
    if (std::any_of(name.begin(), name.end(), isLineBreak)) {
        return false;
    }
    const auto header = "@plot " + std::string(plotKindName(plot.kind)) + " " + name;
    const auto words = splitPlotWords(cleanLine(header));
    return words.size() > 2 && unquotePlotText(words[2]) == name;
}

/// True for `<derive>.<table>`, as the reader of `derived("...")` wants it.
bool isSelector(std::string_view text) {
    const auto dot = text.find('.');
    return dot != std::string_view::npos && dot != 0 && dot + 1 != text.size();
}

void printSource(Printer& print, const PlotSpec& plot) {
    const bool implied = plot.sourceKind == PlotSourceKind::self && plot.scope == PlotScope::task;
    if (plot.sourceKind == PlotSourceKind::unspecified || implied) {
        return;
    }
    const std::string& argument = plot.sourceArgument;
    if (plot.sourceKind == PlotSourceKind::derived) {
        if (!isSelector(argument)) {
            print.lose("the source '" + argument + "' is no <derive>.<table>");
        }
        print.line("from").word("derived(" + quotePlotText(argument) + ")").end();
        return;
    }
    print.line("from").word(plotSourceName(plot.sourceKind)).wordIf(!argument.empty(), argument).end();
}

/// Whether the body names the source of the plot, and says the same without the lines of the source.
/// A name that ends in an operator swallows the next line, which may have said nothing.
bool sourceReadsBack(const PlotSpec& plot, std::string_view sourceLines, std::string_view otherLines) {
    try {
        auto whole = readBody(plot.kind, std::string(sourceLines) + std::string(otherLines));
        auto others = readBody(plot.kind, otherLines);
        others.sourceKind = plot.sourceKind;
        others.sourceArgument = plot.sourceArgument;
        return whole == others;
    } catch (const DiagnosticError&) {
        return false;
    }
}

void checkSource(Printer& print, const PlotSpec& plot, std::size_t sourceAt, std::size_t othersAt) {
    const bool named = plot.sourceKind == PlotSourceKind::task || plot.sourceKind == PlotSourceKind::variants;
    if (!named || Printer::isPlainWord(plot.sourceArgument)) {
        return;
    }
    const auto text = print.text();
    if (!sourceReadsBack(plot, text.substr(sourceAt, othersAt - sourceAt), text.substr(othersAt))) {
        print.lose(strayText("name of the source", plot.sourceArgument));
    }
}

void printAxis(Printer& print, std::string_view header, const AxisSpec& axis) {
    if (!axis.declared) {
        return;
    }
    if (axis.label.empty() && axis.unit.empty() && !axis.scaleDeclared) {
        print.lose("'" + std::string(header) + "' has no body");
    }
    print.line(header).end();
    print.deeper();
    print.quotedLine("label", axis.label);
    print.quotedLine("unit", axis.unit);
    if (axis.scaleDeclared) {
        print.line("scale").word(axisScaleName(axis.scale)).end();
    }
    print.shallower();
}

void printLegend(Printer& print, const LegendSpec& legend) {
    if (!legend.declared) {
        return;
    }
    print.line("legend:").end();
    print.deeper();
    if (legend.position != LegendPosition::automatic) {
        print.line("position").word(legendPositionName(legend.position)).end();
    }
    print.line(legend.visible ? "visible true" : "visible false").end();
    if (!legend.order.empty()) {
        print.line("order").word(join(legend.order, " ")).end();
    }
    for (const auto& id : legend.order) {
        if (!isPlotIdentifier(id)) {
            print.lose("the legend's series id '" + id + "' is no identifier");
        }
    }
    print.shallower();
}

/// Title, style, output and the like, which plots of every kind have.
void printCommonLines(Printer& print, const PlotSpec& plot) {
    print.quotedLine("title", plot.title);
    if (plot.style != PlotStyle::lines) {
        print.line("style").word(plotStyleName(plot.style)).end();
    } else if (defaultStyle(plot.kind) != PlotStyle::lines) {
        print.lose("the style 'lines' is not printed and becomes '" +
                   std::string(plotStyleName(defaultStyle(plot.kind))) + "'");
    }
    if (plot.theme != PlotTheme::automatic) {
        print.line("theme").word(plotThemeName(plot.theme)).end();
    }
    if (plot.missing != MissingPolicy::error) {
        print.line("missing").word(missingPolicyName(plot.missing)).end();
    }
    if (plot.outputPath.empty()) {
        print.lose("the output is empty");
    } else if (formatOfPath(plot.outputPath).value_or(plot.format) != plot.format) {
        print.lose("the output '" + plot.outputPath + "' is not of the format '" +
                   std::string(plotFormatName(plot.format)) + "'");
    }
    print.line("output").quoted(plot.outputPath).end();
    print.line("format").word(plotFormatName(plot.format)).end();
    if (plot.sizeDeclared) {
        print.line("size").word(std::to_string(plot.width)).word(std::to_string(plot.height)).end();
    }
}

void warnOfLosses(Printer& print, const PlotSpec& plot, const WarningSink& warnings) {
    // Substitution may have brought in what is refused when it is read, such as an id that is there already.
    for (const auto& issue : validatePlot(plot)) {
        print.lose(issue.message);
    }
    if (!print.losses().empty()) {
        warnings(inOneLine("plot '" + plot.name + "' does not read back: " + join(print.losses(), "; ")));
    }
}

} // namespace

std::string renderPlot(const PlotSpec& plot, std::string_view indent, const WarningSink& warnings) {
    Printer print(plot.kind, indent);
    const bool ofTask = plot.scope == PlotScope::task;
    if (!nameReadsBack(plot)) {
        print.lose(strayText("name", plot.name));
    }
    print.line(ofTask ? "%plot" : "@plot").word(plotKindName(plot.kind)).word(plot.name).end();
    print.deeper();
    const std::size_t sourceAt = print.text().size();
    printSource(print, plot);
    const std::size_t othersAt = print.text().size();
    printData(print, plot.data);
    printAxis(print, "axis x:", plot.xAxis);
    printAxis(print, "axis y:", plot.yAxis);
    printAxis(print, "axis y2:", plot.y2Axis);
    printLegend(print, plot.legend);
    printCommonLines(print, plot);
    checkSource(print, plot, sourceAt, othersAt);
    print.shallower();
    print.lineIf(!ofTask, "@end");
    if (warnings) {
        warnOfLosses(print, plot, warnings);
    }
    return print.take();
}

} // namespace morquill::taskdsl::plot
