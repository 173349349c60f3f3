#include "support/number.h"
#include "support/text.h"
#include "support/word_table.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/series.h"
#include "taskdsl/plot/statements.h"

#include <optional>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// The `<derive>.<table>` that `derived(derive.table)` or `derived(derive, table=table)` names.
/// Unlike the `derived(...)` of a derived table, this one takes the table as a second positional argument,
/// too.
std::string readDerivedCall(const Statement& statement) {
    constexpr std::string_view shape =
        "derived source must be derived(derive.table) or derived(derive, table=table)";
    const ExprRef source = parsePlotExpression(statement.rest, statement.span);
    const auto* call = expressionAs<CallExpr>(source);
    if (call == nullptr || !equalsNoCase(call->name, "derived")) {
        fail(statement, std::string(shape));
    }
    std::vector<ExprRef> positional;
    ExprRef named;
    for (const auto& argument : call->arguments) {
        const auto name = toLower(argument.name);
        if (!argument.named) {
            positional.push_back(argument.value);
        } else if (name == "table" || name == "name" || name == "value") {
            named = argument.value;
        } else {
            fail(statement, "unsupported derived() selector '" + argument.name + "'");
        }
    }
    if (positional.empty()) {
        fail(statement, "derived() requires a derive selector");
    }
    if (positional.size() > 1 && named) {
        fail(statement, "derived() table selector may be positional or named, not both");
    }
    if (positional.size() > 2) {
        fail(statement, std::string(shape));
    }
    auto derive = requireNameOrString(positional.front(), "derived() selector", statement.span);
    const ExprRef& table = positional.size() > 1 ? positional.back() : named;
    if (!table) {
        const auto dot = derive.find('.');
        if (dot == std::string::npos || dot == 0 || dot + 1 == derive.size()) {
            fail(statement, "derived() shorthand must be 'derive.table'");
        }
        return derive;
    }
    const auto tableName = requireNameOrString(table, "derived() table selector", statement.span);
    const auto left = trim(derive);
    const auto right = trim(tableName);
    if (left.empty() || right.empty()) {
        fail(statement, "derived source must be 'derive.table'");
    }
    return std::string(left) + "." + std::string(right);
}

/// The message for a source without its argument; empty for a source that takes none.
std::string_view missingArgument(PlotSourceKind source) noexcept {
    switch (source) {
    case PlotSourceKind::task:
        return "from task requires a task name";
    case PlotSourceKind::variants:
        return "from variants requires a template task name";
    case PlotSourceKind::derived:
        return "from derived requires a derive.table selector";
    default:
        return {};
    }
}

/// Refuses the second statement of a body that may say a thing once.
void once(bool& seen, const Statement& statement, std::string_view what) {
    if (std::exchange(seen, true)) {
        fail(statement, std::string(what) + " is declared more than once");
    }
}

/// The text of an axis label or unit.
std::string axisText(const Statement& statement, std::string_view what, std::string_view needs) {
    if (statement.rest.empty()) {
        fail(statement, std::string(what) + " requires " + std::string(needs));
    }
    auto text = unquotePlotText(statement.rest);
    if (text.empty()) {
        fail(statement, std::string(what) + " cannot be empty");
    }
    return text;
}

void readAxisBody(AxisSpec& axis, std::span<const PlotStatement> body) {
    bool labelSeen = false;
    bool unitSeen = false;
    for (const auto& line : body) {
        const Statement statement = openStatement(line);
        if (statement.word == "label") {
            once(labelSeen, statement, "axis label");
            axis.label = axisText(statement, "axis label", "text");
        } else if (statement.word == "unit") {
            once(unitSeen, statement, "axis unit");
            axis.unit = axisText(statement, "axis unit", "a value");
        } else if (statement.word == "scale") {
            once(axis.scaleDeclared, statement, "axis scale");
            const auto scale = parseAxisScale(choiceOf(statement.rest));
            if (!scale) {
                fail(statement, "axis scale requires linear or log10");
            }
            axis.scale = *scale;
        } else {
            fail(statement, "unsupported axis modifier '" + statement.word + "'");
        }
    }
}

constexpr auto visibleWords = wordTable<bool>({
    {"true", true},
    {"yes", true},
    {"on", true},
    {"1", true},
    {"false", false},
    {"no", false},
    {"off", false},
    {"0", false},
});

void readLegendOrder(LegendSpec& legend, const Statement& statement) {
    for (const auto word : splitPlotWords(statement.rest)) {
        auto id = unquotePlotText(word);
        if (!isPlotIdentifier(id)) {
            fail(statement, "legend order entries must be simple series identifiers");
        }
        legend.order.push_back(std::move(id));
    }
    if (legend.order.empty()) {
        fail(statement, "legend order requires at least one named series id");
    }
}

void readLegendBody(LegendSpec& legend, std::span<const PlotStatement> body) {
    bool positionSeen = false;
    bool visibleSeen = false;
    bool orderSeen = false;
    for (const auto& line : body) {
        const Statement statement = openStatement(line);
        if (statement.word == "position") {
            once(positionSeen, statement, "legend position");
            const auto text = unquotePlotText(statement.rest);
            const auto position = parseLegendPosition(trim(text));
            if (!position) {
                fail(statement,
                     "legend position requires auto, top right, top left, bottom right, bottom left, "
                     "outside right, or bottom");
            }
            legend.position = *position;
        } else if (statement.word == "visible") {
            once(visibleSeen, statement, "legend visibility");
            const auto visible = visibleWords.find(choiceOf(statement.rest));
            if (!visible) {
                fail(statement, "legend visible requires true or false");
            }
            legend.visible = *visible;
        } else if (statement.word == "order") {
            once(orderSeen, statement, "legend order");
            readLegendOrder(legend, statement);
        } else {
            fail(statement, "unsupported legend modifier '" + statement.word + "'");
        }
    }
}

/// Sets width and height. Throws with `message` when one of them does not begin with an integer that fits.
void setSize(PlotSpec& plot, std::string_view width, std::string_view height, const Statement& statement,
             std::string_view message) {
    const auto w = readLeadingInt(width);
    const auto h = readLeadingInt(height);
    if (!w || !h) {
        fail(statement, std::string(message));
    }
    plot.width = *w;
    plot.height = *h;
    plot.sizeDeclared = true;
}

} // namespace

void readFrom(PlotReading& reading, const Statement& statement) {
    PlotSpec& plot = reading.plot;
    const auto words = splitPlotWords(statement.rest);
    if (words.empty()) {
        fail(statement, "from requires a source");
    }
    if (toLower(words.front()).starts_with("derived(")) {
        plot.sourceArgument = readDerivedCall(statement);
        plot.sourceKind = PlotSourceKind::derived;
        plot.sourceSpan = statement.span;
        return;
    }
    const auto source = parsePlotSource(words.front());
    if (!source) {
        fail(statement, "unsupported plot source '" + std::string(words.front()) + "'");
    }
    const auto missing = missingArgument(*source);
    if (!missing.empty() && words.size() < 2) {
        fail(statement, std::string(missing));
    }
    plot.sourceArgument = missing.empty() ? std::string() : unquotePlotText(words[1]);
    plot.sourceKind = *source;
    plot.sourceSpan = statement.span;
}

void readAxis(PlotReading& reading, const Statement& statement) {
    PlotSpec& plot = reading.plot;
    const auto text = stripTrailingColon(statement.rest);
    if (!text) {
        fail(statement, "axis declaration must end with ':'");
    }
    const auto name = unquotePlotText(*text);
    AxisSpec* axis = nullptr;
    if (equalsNoCase(name, "x")) {
        axis = &plot.xAxis;
    } else if (const auto side = parsePlotAxis(name)) {
        axis = *side == PlotAxis::y ? &plot.yAxis : &plot.y2Axis;
    } else {
        fail(statement, "axis requires x, y, or y2");
    }
    if (axis->declared) {
        fail(statement, "axis '" + name + "' is declared more than once");
    }
    axis->declared = true;
    axis->span = statement.span;
    const auto body = takeBody(reading, statement);
    if (body.empty()) {
        fail(statement, "axis declaration requires an indented body");
    }
    readAxisBody(*axis, body);
}

void readLegend(PlotReading& reading, const Statement& statement) {
    LegendSpec& legend = reading.plot.legend;
    if (statement.rest != ":") {
        fail(statement, "legend declaration must be written as 'legend:'");
    }
    if (legend.declared) {
        fail(statement, "legend is declared more than once");
    }
    legend.declared = true;
    legend.span = statement.span;
    const auto body = takeBody(reading, statement);
    if (body.empty()) {
        fail(statement, "legend declaration requires an indented body");
    }
    readLegendBody(legend, body);
}

void readTitle(PlotReading& reading, const Statement& statement) {
    reading.plot.title = unquotePlotText(statement.rest);
}

void readOutput(PlotReading& reading, const Statement& statement) {
    if (statement.rest.empty()) {
        fail(statement, "output requires a path");
    }
    reading.plot.outputPath = unquotePlotText(statement.rest);
}

void readFormat(PlotReading& reading, const Statement& statement) {
    const auto word = splitFirstWord(statement.rest).word;
    if (word.empty()) {
        fail(statement, statement.word + " requires a format");
    }
    const auto format = parsePlotFormat(word);
    if (!format) {
        fail(statement, "unsupported plot format '" + std::string(word) + "'");
    }
    reading.plot.format = *format;
    reading.formatDeclared = true;
}

void readTerminal(PlotReading& reading, const Statement& statement) {
    readFormat(reading, statement);
    const auto words = splitPlotWords(statement.rest);
    if (words.size() == 1) {
        return;
    }
    if (words.size() != 4 || !equalsNoCase(words[1], "size")) {
        fail(statement, "terminal accepts '<format>' or '<format> size <width> <height>'");
    }
    setSize(reading.plot, words[2], words[3], statement, "terminal size values must be integers");
}

void readSize(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.size() != 2) {
        fail(statement, "size requires width and height");
    }
    setSize(reading.plot, words[0], words[1], statement, "size values must be integers");
}

void readStyle(PlotReading& reading, const Statement& statement) {
    reading.plot.style = readStyleValue(statement.rest, statement.span);
}

void readTheme(PlotReading& reading, const Statement& statement) {
    const auto word = splitFirstWord(statement.rest).word;
    if (word.empty()) {
        fail(statement, "theme requires a value");
    }
    const auto text = unquotePlotText(word);
    const auto theme = parsePlotTheme(text);
    if (!theme) {
        fail(statement, "unsupported plot theme '" + text +
                            "'; supported themes are auto, scientific, report, matrix, minimal, level");
    }
    reading.plot.theme = *theme;
}

void readMissing(PlotReading& reading, const Statement& statement) {
    const auto policy = parseMissingPolicy(choiceOf(statement.rest));
    if (!policy) {
        fail(statement, "missing requires error, skip, or nan");
    }
    reading.plot.missing = *policy;
}

} // namespace morquill::taskdsl::plot
