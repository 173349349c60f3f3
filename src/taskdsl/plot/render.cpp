#include "taskdsl/plot/render.h"

#include "support/number.h"
#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

namespace morquill::taskdsl::plot {

namespace {

std::string number(double value) {
    return formatSignificant(value, 15);
}

/// The text of a plot as it grows, line by line.
struct Printer {
    std::string out;
    std::string_view indent;
    std::size_t level = 0; ///< of the line, in steps of two blanks behind the indent

    /// Begins a line.
    Printer& line(std::string_view text) {
        out += indent;
        out.append(2 * level, ' ');
        out += text;
        return *this;
    }
    Printer& word(std::string_view text) {
        out += ' ';
        out += text;
        return *this;
    }
    Printer& quoted(std::string_view text) { return word(quotePlotText(text)); }
    void end() { out += '\n'; }

    /// ` <keyword> <quoted text>`, unless the text is empty.
    Printer& quotedOption(std::string_view keyword, std::string_view text) {
        return text.empty() ? *this : word(keyword).quoted(text);
    }
    /// ` <keyword> <text>`, unless the text is empty.
    Printer& bareOption(std::string_view keyword, std::string_view text) {
        return text.empty() ? *this : word(keyword).word(text);
    }
    Printer& wordIf(bool condition, std::string_view text) { return condition ? word(text) : *this; }

    void quotedLine(std::string_view keyword, std::string_view text) {
        if (!text.empty()) {
            line(keyword).quoted(text).end();
        }
    }
    void bareLine(std::string_view keyword, std::string_view text) {
        if (!text.empty()) {
            line(keyword).word(text).end();
        }
    }
    void lineIf(bool condition, std::string_view text) {
        if (condition) {
            line(text).end();
        }
    }
};

/// ` <expression>` and the modifiers of a series.
void printSeriesTail(Printer& print, const PlotSeries& series) {
    print.word(renderPlotExpression(series.expression)).quotedOption("label", series.label);
    print.bareOption("unit", series.unit).wordIf(series.logScale, "log");
    if (series.axisDeclared) {
        print.word("axis").word(plotAxisName(series.axis));
    }
    if (series.styleDeclared) {
        print.word("style").word(plotStyleName(series.style));
    }
    print.end();
}

void printSeries(Printer& print, std::string_view keyword, const PlotSeries& series) {
    if (series.expression) {
        printSeriesTail(print.line(keyword), series);
    }
}

void printSeriesList(Printer& print, const std::vector<PlotSeries>& list) {
    for (const auto& series : list) {
        if (series.id.empty()) {
            printSeries(print, "y", series);
        } else {
            printSeriesTail(print.line("series").word(series.id).word("="), series);
        }
    }
}

void printRange(Printer& print, bool declared, double low, double high) {
    if (declared) {
        print.line("range").word(number(low)).word(number(high)).end();
    }
}

std::string multiplicityText(std::int32_t multiplicity) {
    switch (multiplicity) {
    case 1:
        return "singlet";
    case 2:
        return "doublet";
    case 3:
        return "triplet";
    case 4:
        return "quartet";
    default:
        return std::to_string(multiplicity);
    }
}

void printColumn(Printer& print, const PlotColumn& column, bool withMultiplicity) {
    print.line("column").word(column.id);
    if (column.label != column.id) {
        print.word("label").quoted(column.label);
    }
    if (column.task != column.id) {
        print.word("task").quoted(column.task);
    }
    if (withMultiplicity && column.multiplicityDeclared) {
        print.word("multiplicity").word(multiplicityText(column.multiplicity));
    }
    print.end();
}

void printArrow(Printer& print, const ExcitedArrow& arrow) {
    print.line("arrow from")
        .word(arrow.sourceColumn)
        .word("root")
        .word(std::to_string(arrow.sourceRoot))
        .word("to");
    if (arrow.targetMode == ArrowTargetMode::explicitRoot) {
        print.word(arrow.targetColumn).word("root").word(std::to_string(arrow.targetRoot));
    } else {
        print.word(arrow.relativeColumn).word(arrowTargetName(arrow.targetMode));
    }
    print.word("style").word(arrowStyleName(arrow.style)).end();
}

/// The lines of each kind.
struct DataPrinter {
    Printer& print;

    void operator()(const BarrierPlotData& data) const {
        for (const auto& point : data.points) {
            print.line("point").word(point.id).quotedOption("label", point.label);
            print.bareOption("value", renderPlotExpression(point.value)).end();
        }
        if (data.relativeMode == RelativeMode::toPoint) {
            print.line("relative to").word(data.relativePoint).end();
        }
        printRelative(data.relativeMode);
        print.bareLine("unit", data.unit);
    }

    void operator()(const ConvergencePlotData& data) const {
        printSeries(print, "x", data.x);
        printSeriesList(print, data.series);
        for (const auto& threshold : data.thresholds) {
            print.line("threshold").word(renderPlotExpression(threshold.property));
            print.word("value").word(number(threshold.value)).quotedOption("label", threshold.label);
            print.bareOption("unit", threshold.unit).wordIf(threshold.axis == PlotAxis::y2, "axis y2").end();
        }
    }

    void operator()(const CurvePlotData& data) const {
        printSeries(print, "x", data.x);
        printSeriesList(print, data.series);
        printRelative(data.relativeMode);
        print.lineIf(data.sortByX, "sort by x");
    }

    void operator()(const SpectrumPlotData& data) const {
        printSeries(print, "x", data.x);
        printSeries(print, "y", data.y);
        print.line("mode").word(spectrumModeName(data.mode)).end();
        if (data.broadening != BroadenFunction::none) {
            print.line("broaden")
                .word(broadenFunctionName(data.broadening))
                .word("fwhm")
                .word(number(data.fwhm));
            print.bareOption("unit", data.fwhmUnit).end();
        }
        printRange(print, data.rangeDeclared, data.rangeLow, data.rangeHigh);
        print.lineIf(!data.sortByX, "sort none");
    }

    void operator()(const ScatterPlotData& data) const {
        printSeries(print, "x", data.x);
        printSeries(print, "y", data.y);
        print.lineIf(data.diagonal, "diagonal y=x");
        print.lineIf(data.fitLinear, "fit linear");
        printWords("metrics", data.metrics);
    }

    void operator()(const HeatmapPlotData& data) const {
        printSeries(print, "x", data.x);
        printSeries(print, "y", data.y);
        printSeries(print, "z", data.z);
    }

    void operator()(const HistogramPlotData& data) const {
        printSeries(print, "x", data.x);
        print.line("bins").word(std::to_string(data.bins)).end();
        printRange(print, data.rangeDeclared, data.rangeLow, data.rangeHigh);
        print.lineIf(data.density, "density true");
    }

    void operator()(const BarPlotData& data) const {
        printSeries(print, "x", data.x);
        printSeries(print, "y", data.y);
        print.lineIf(data.sortEnabled, data.sortDescending ? "sort by y desc" : "sort by y asc");
        if (data.limitDeclared) {
            print.line("limit").word(std::to_string(data.limit)).end();
        }
    }

    void operator()(const ErrorbarPlotData& data) const {
        printSeries(print, "x", data.x);
        printSeries(print, "y", data.y);
        printSeries(print, "yerr", data.yerr);
        print.lineIf(data.sortByX, "sort by x");
    }

    void operator()(const FrontierPlotData& data) const {
        for (const auto& column : data.columns) {
            printColumn(print, column, false);
        }
        printWords("orbitals", data.orbitals);
        print.line("spin").word(spinSelectionName(data.spin)).end();
        print.bareLine("unit", data.unit);
    }

    void operator()(const ExcitedPlotData& data) const {
        for (const auto& column : data.columns) {
            printColumn(print, column, true);
        }
        std::vector<std::string> roots;
        for (const auto root : data.roots) {
            roots.push_back(std::to_string(root));
        }
        printWords("roots", roots);
        for (const auto& arrow : data.arrows) {
            printArrow(print, arrow);
        }
        print.bareLine("unit", data.unit);
    }

  private:
    void printRelative(RelativeMode mode) const {
        print.lineIf(mode == RelativeMode::first, "relative first");
        print.lineIf(mode == RelativeMode::minimum, "relative minimum");
    }

    void printWords(std::string_view keyword, const std::vector<std::string>& words) const {
        if (!words.empty()) {
            print.line(keyword).word(join(words, " ")).end();
        }
    }
};

void printSource(Printer& print, const PlotSpec& plot) {
    const bool implied = plot.sourceKind == PlotSourceKind::self && plot.scope == PlotScope::task;
    if (plot.sourceKind == PlotSourceKind::unspecified || implied) {
        return;
    }
    print.line("from");
    if (plot.sourceKind == PlotSourceKind::derived) {
        print.word("derived(" + quotePlotText(plot.sourceArgument) + ")").end();
        return;
    }
    print.word(plotSourceName(plot.sourceKind));
    print.wordIf(!plot.sourceArgument.empty(), plot.sourceArgument).end();
}

void printAxis(Printer& print, std::string_view header, const AxisSpec& axis) {
    if (!axis.declared) {
        return;
    }
    print.line(header).end();
    ++print.level;
    print.quotedLine("label", axis.label);
    print.quotedLine("unit", axis.unit);
    if (axis.scaleDeclared) {
        print.line("scale").word(axisScaleName(axis.scale)).end();
    }
    --print.level;
}

void printLegend(Printer& print, const LegendSpec& legend) {
    if (!legend.declared) {
        return;
    }
    print.line("legend:").end();
    ++print.level;
    if (legend.position != LegendPosition::automatic) {
        print.line("position").word(legendPositionName(legend.position)).end();
    }
    print.line(legend.visible ? "visible true" : "visible false").end();
    if (!legend.order.empty()) {
        print.line("order").word(join(legend.order, " ")).end();
    }
    --print.level;
}

} // namespace

std::string renderPlot(const PlotSpec& plot, std::string_view indent) {
    Printer print{{}, indent};
    const bool ofTask = plot.scope == PlotScope::task;
    print.line(ofTask ? "%plot" : "@plot").word(plotKindName(plot.kind)).word(plot.name).end();
    print.level = 1;
    printSource(print, plot);
    std::visit(DataPrinter{print}, plot.data);
    printAxis(print, "axis x:", plot.xAxis);
    printAxis(print, "axis y:", plot.yAxis);
    printAxis(print, "axis y2:", plot.y2Axis);
    printLegend(print, plot.legend);
    print.quotedLine("title", plot.title);
    if (plot.style != PlotStyle::lines) {
        print.line("style").word(plotStyleName(plot.style)).end();
    }
    if (plot.theme != PlotTheme::automatic) {
        print.line("theme").word(plotThemeName(plot.theme)).end();
    }
    if (plot.missing != MissingPolicy::error) {
        print.line("missing").word(missingPolicyName(plot.missing)).end();
    }
    print.line("output").quoted(plot.outputPath).end();
    print.line("format").word(plotFormatName(plot.format)).end();
    if (plot.sizeDeclared) {
        print.line("size").word(std::to_string(plot.width)).word(std::to_string(plot.height)).end();
    }
    print.level = 0;
    print.lineIf(!ofTask, "@end");
    return std::move(print.out);
}

} // namespace morquill::taskdsl::plot
