#include "taskdsl/plot/plot_parser.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/reading.h"
#include "taskdsl/plot/statements.h"
#include "taskdsl/plot/validate.h"

#include <utility>

namespace morquill::taskdsl::plot {

namespace {

PlotSpec readHeader(const PlotBlock& block) {
    const SourceSpan& span = block.captured.span;
    const auto words = splitPlotWords(block.captured.header);
    if (words.empty()) {
        plotError(span, "%plot/@plot requires a kind");
    }
    const auto kindText = unquotePlotText(words.front());
    const auto kind = parsePlotKind(kindText);
    if (!kind) {
        plotError(span, "unknown plot kind '" + kindText +
                            "'; supported kinds are barrier, convergence, curve, spectrum, scatter, heatmap, "
                            "histogram, bar, errorbar, frontier, excited");
    }
    const bool ofTask = block.scope == PlotScope::task;
    PlotSpec plot;
    plot.kind = *kind;
    plot.name = words.size() > 1 ? unquotePlotText(words[1]) : std::string(plotKindName(*kind));
    plot.id = ofTask && !block.ownerTask.empty() ? block.ownerTask + ":" + plot.name : plot.name;
    plot.scope = block.scope;
    plot.ownerTask = block.ownerTask;
    plot.sourceKind = ofTask ? PlotSourceKind::self : PlotSourceKind::unspecified;
    plot.span = span;
    applyKindDefaults(plot);
    return plot;
}

void refuse(const StatementRow& row, RefusalTime now, PlotKind kind, const Statement& statement) {
    if (row.refused != now) {
        return;
    }
    for (const auto& [set, message] : row.refusals) {
        if (contains(set, kind)) {
            fail(statement, std::string(message));
        }
    }
}

void readStatement(PlotReading& reading, const PlotStatement& source) {
    Statement statement = openStatement(source);
    if (statement.word == "legend:" && statement.rest.empty()) {
        statement.word = "legend";
        statement.rest = ":";
    }
    const StatementRow* row = reading.atPoint ? findPointStatement(statement.word) : nullptr;
    if (row == nullptr) {
        reading.atPoint = false;
        row = findStatement(statement.word);
    }
    if (row == nullptr) {
        fail(statement, "unknown plot statement '" + statement.word + "'");
    }
    refuse(*row, RefusalTime::beforeReading, reading.plot.kind, statement);
    row->read(reading, statement);
    refuse(*row, RefusalTime::afterReading, reading.plot.kind, statement);
}

/// The text after the last dot of the path's last component; empty when there is none.
std::string_view extensionOf(std::string_view path) {
    const auto dot = path.find_last_of("./\\");
    return dot != std::string_view::npos && path[dot] == '.' ? path.substr(dot + 1) : std::string_view{};
}

/// Brings the output path and the format together: a written path's extension decides the format that was not
/// declared, a path that was not written is made from the format.
void settleOutput(PlotSpec& plot, bool formatDeclared) {
    if (plot.outputPath.empty()) {
        plot.outputPath = plot.scope == PlotScope::task ? "Results/Plots/[taskname]_" : "Results/Plots/";
        plot.outputPath += plot.name;
        plot.outputPath += '.';
        plot.outputPath += plotFormatName(plot.format);
        return;
    }
    const auto format = formatOfPath(plot.outputPath);
    if (!format) {
        return;
    }
    if (formatDeclared && *format != plot.format) {
        plotError(plot.span, "plot output extension does not match the declared format");
    }
    plot.format = *format;
}

} // namespace

PlotSpec parsePlot(const PlotBlock& block) {
    PlotReading reading;
    reading.plot = readHeader(block);
    reading.statements = readPlotStatements(block.captured.lines);
    readStatements(reading);
    settleOutput(reading.plot, reading.formatDeclared);
    for (const auto& issue : validatePlot(reading.plot)) {
        if (issue.severity == PlotIssue::error) {
            plotError(issue.span, "plot '" + reading.plot.name + "': " + issue.message);
        }
    }
    return std::move(reading.plot);
}

void readStatements(PlotReading& reading) {
    while (reading.next < reading.statements.size()) {
        const PlotStatement& source = reading.statements[reading.next++];
        readStatement(reading, source);
    }
}

PlotSpec readBody(PlotKind kind, std::string_view lines) {
    PlotReading reading;
    reading.plot.kind = kind;
    applyKindDefaults(reading.plot);
    std::vector<SourceLine> body;
    for (const auto line : splitLines(lines)) {
        body.push_back({std::string(line), {}});
    }
    reading.statements = readPlotStatements(body);
    for (auto& statement : reading.statements) {
        statement.span = {};
    }
    readStatements(reading);
    return std::move(reading.plot);
}

std::optional<PlotOutputFormat> formatOfPath(std::string_view path) {
    return parsePlotFormat(extensionOf(path));
}

Statement openStatement(const PlotStatement& source) {
    const auto [word, rest] = splitFirstWord(source.text);
    return {toLower(word), rest, source.span, source.indent};
}

std::span<const PlotStatement> takeBody(PlotReading& reading, const Statement& statement) {
    const std::size_t first = reading.next;
    while (reading.next < reading.statements.size() &&
           reading.statements[reading.next].indent > statement.indent) {
        ++reading.next;
    }
    return std::span(reading.statements).subspan(first, reading.next - first);
}

std::string choiceOf(std::string_view text) {
    return toLower(unquotePlotText(splitFirstWord(text).word));
}

void fail(const Statement& statement, std::string message) {
    plotError(statement.span, std::move(message));
}

} // namespace morquill::taskdsl::plot
