#include "support/match.h"
#include "support/text.h"
#include "support/word_table.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/series.h"
#include "taskdsl/plot/statements.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

PlotSeries readSeriesOf(const Statement& statement) {
    return parseSeriesStatement(statement.word, statement.rest, statement.span);
}

/// The series list of the kinds that have one; null for the others.
std::vector<PlotSeries>* seriesList(PlotData& data) {
    if (auto* convergence = std::get_if<ConvergencePlotData>(&data)) {
        return &convergence->series;
    }
    auto* curve = std::get_if<CurvePlotData>(&data);
    return curve == nullptr ? nullptr : &curve->series;
}

/// The whole number that the word begins with, as C's `strtoll` reads it; nothing when there is none or it
/// does not fit.
std::optional<std::int64_t> readLeadingCount(std::string_view word) {
    const std::string text(word);
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str() || errno == ERANGE) {
        return std::nullopt;
    }
    return value;
}

/// The one positive integer that a `bins` or `limit` statement takes.
std::int64_t readCount(const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.size() != 1) {
        fail(statement, statement.word + " requires one integer value");
    }
    const auto count = readLeadingCount(words.front());
    if (!count) {
        fail(statement, statement.word + " must be an integer");
    }
    if (*count < 1) {
        fail(statement, statement.word + " must be positive");
    }
    return *count;
}

/// The first word after a threshold option; empty when there is none.
std::string wordOf(std::string_view value) {
    return unquotePlotText(splitFirstWord(value).word);
}

void sortCurve(CurvePlotData& data, const std::string& value, const Statement& statement) {
    if (value != "by x" && value != "x") {
        fail(statement, "only 'sort by x' is supported");
    }
    data.sortByX = true;
}

void sortSpectrum(SpectrumPlotData& data, const std::string& value, const Statement& statement) {
    const bool none = value == "none" || value == "false";
    if (!none && value != "by x" && value != "x") {
        fail(statement, "spectrum sort accepts 'by x' or 'none'");
    }
    data.sortByX = !none;
}

void sortErrorbar(ErrorbarPlotData& data, const std::string& value, const Statement& statement) {
    if (value != "by x" && value != "x") {
        fail(statement, "errorbar sort supports only 'sort by x'");
    }
    data.sortByX = true;
}

/// Whether a word asks for falling values.
constexpr auto descendingWords = wordTable<bool>({
    {"asc", false},
    {"ascending", false},
    {"desc", true},
    {"descending", true},
});

void sortBar(BarPlotData& data, const std::string& value, const Statement& statement) {
    const auto words = splitPlotWords(value);
    if (words.empty()) {
        fail(statement, "bar sort requires 'by y', 'y desc', or 'none'");
    }
    if (words.front() == "none" || words.front() == "false") {
        data.sortEnabled = false;
        data.sortDescending = true; // each statement counts by itself, even when repeated
        return;
    }
    const std::size_t key = words.front() == "by" ? 1 : 0;
    if (key >= words.size() || words[key] != "y") {
        fail(statement, "bar sort supports only 'sort by y'");
    }
    data.sortEnabled = true;
    data.sortDescending = true;
    if (key + 1 < words.size()) {
        const auto descending = descendingWords.findExact(words[key + 1]);
        if (!descending) {
            fail(statement, "bar sort direction must be asc or desc");
        }
        data.sortDescending = *descending;
    }
}

RelativeMode readRelativeMode(std::string_view word, const Statement& statement) {
    const auto mode = parseRelativeMode(word);
    if (!mode) {
        fail(statement, "unsupported relative mode '" + toLower(word) + "'");
    }
    return *mode;
}

} // namespace

void readX(PlotReading& reading, const Statement& statement) {
    auto series = readSeriesOf(statement);
    const auto store = [&](auto& data) {
        if constexpr (requires { data.x; }) {
            data.x = std::move(series);
        }
    };
    std::visit(store, reading.plot.data);
}

void readY(PlotReading& reading, const Statement& statement) {
    auto series = readSeriesOf(statement);
    const auto store = [&](auto& data) {
        if constexpr (requires { data.y; }) {
            data.y = std::move(series);
        } else if constexpr (requires { data.series; }) {
            data.series.push_back(std::move(series));
        }
    };
    if (const auto* scatter = std::get_if<ScatterPlotData>(&reading.plot.data);
        scatter && scatter->y.expression) {
        fail(statement, "scatter plot accepts exactly one y expression");
    }
    std::visit(store, reading.plot.data);
}

void readZ(PlotReading& reading, const Statement& statement) {
    dataOf<HeatmapPlotData>(reading).z = readSeriesOf(statement);
}

void readYerr(PlotReading& reading, const Statement& statement) {
    dataOf<ErrorbarPlotData>(reading).yerr = readSeriesOf(statement);
}

void readSeries(PlotReading& reading, const Statement& statement) {
    const auto head = stripTrailingColon(statement.rest);
    const auto text = head.value_or(trim(statement.rest));
    const auto equals = findAtLevelZero(text, '=');
    if (equals == std::string_view::npos) {
        fail(statement, "series requires '<id> = <expression>'");
    }
    auto id = unquotePlotText(text.substr(0, equals));
    if (!isPlotIdentifier(id)) {
        fail(statement, "series id must match [A-Za-z_][A-Za-z0-9_]*");
    }
    auto series = parseSeriesStatement(statement.word, text.substr(equals + 1), statement.span);
    series.id = std::move(id);
    if (head) {
        const auto body = takeBody(reading, statement);
        if (body.empty()) {
            fail(statement, "series declaration ending with ':' requires an indented body");
        }
        for (const auto& line : body) {
            const Statement modifier = openStatement(line);
            applySeriesModifier(series, modifier.word, modifier.rest, modifier.span);
        }
    }
    // A kind without named series is refused once the statement has been read whole.
    if (auto* list = seriesList(reading.plot.data)) {
        list->push_back(std::move(series));
    }
}

void readThreshold(PlotReading& reading, const Statement& statement) {
    const auto [head, options] = splitKeywordOptions(statement.rest, {"value", "label", "unit", "axis"});
    if (head.empty()) {
        fail(statement, "threshold requires a property expression");
    }
    ThresholdLine threshold;
    threshold.span = statement.span;
    threshold.property = parsePlotExpression(head, statement.span);
    bool hasValue = false;
    for (const auto& [keyword, value] : options) {
        if (keyword == "value") {
            const auto number = parsePlotNumber(splitFirstWord(value).word);
            if (!number) {
                fail(statement, "threshold value must be numeric");
            }
            threshold.value = *number;
            hasValue = true;
        } else if (keyword == "label") {
            threshold.label = unquotePlotText(value);
        } else if (keyword == "unit") {
            if (value.empty()) {
                fail(statement, "threshold unit requires a value");
            }
            threshold.unit = wordOf(value);
        } else {
            const auto axis = parsePlotAxis(wordOf(value));
            if (!axis) {
                fail(statement, "threshold axis requires y or y2");
            }
            threshold.axis = *axis;
        }
    }
    if (!hasValue) {
        fail(statement, "threshold requires 'value <number>'");
    }
    dataOf<ConvergencePlotData>(reading).thresholds.push_back(std::move(threshold));
}

void readRelative(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.empty()) {
        fail(statement, "relative requires a mode");
    }
    const auto mode = readRelativeMode(words.front(), statement);
    std::string point;
    if (mode == RelativeMode::toPoint) {
        if (words.size() < 2) {
            fail(statement, "relative to requires a point id");
        }
        point = unquotePlotText(words[1]);
    }
    if (auto* barrier = std::get_if<BarrierPlotData>(&reading.plot.data)) {
        barrier->relativeMode = mode;
        barrier->relativePoint = std::move(point);
        return;
    }
    if (mode == RelativeMode::toPoint) {
        fail(statement, "curve plots support only 'relative first', 'relative minimum', or 'relative none'");
    }
    dataOf<CurvePlotData>(reading).relativeMode = mode;
}

void readSort(PlotReading& reading, const Statement& statement) {
    const auto value = unquotePlotText(toLower(statement.rest));
    std::visit(Match{[&](CurvePlotData& data) { sortCurve(data, value, statement); },
                     [&](SpectrumPlotData& data) { sortSpectrum(data, value, statement); },
                     [&](BarPlotData& data) { sortBar(data, value, statement); },
                     [&](ErrorbarPlotData& data) { sortErrorbar(data, value, statement); }, [](auto&) {}},
               reading.plot.data);
}

void readMode(PlotReading& reading, const Statement& statement) {
    const auto mode = parseSpectrumMode(choiceOf(statement.rest));
    if (!mode) {
        fail(statement, "spectrum mode must be sticks, broadened, sticks+broadened, or sampled");
    }
    dataOf<SpectrumPlotData>(reading).mode = *mode;
}

void readBroaden(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.empty()) {
        fail(statement, "broaden requires a function such as gaussian");
    }
    if (!equalsNoCase(words.front(), "gaussian")) {
        fail(statement, "unsupported spectrum broadening function '" + toLower(words.front()) + "'");
    }
    auto& data = dataOf<SpectrumPlotData>(reading);
    data.broadening = BroadenFunction::gaussian;
    data.fwhmUnit.clear(); // each statement counts by itself, even when repeated
    bool hasWidth = false;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const bool hasNext = i + 1 < words.size();
        if (equalsNoCase(words[i], "fwhm")) {
            const auto width = hasNext ? parsePlotNumber(words[++i]) : std::nullopt;
            if (!width) {
                fail(statement, "broaden fwhm requires a numeric value");
            }
            data.fwhm = *width;
            hasWidth = true;
        } else if (equalsNoCase(words[i], "unit")) {
            if (!hasNext) {
                fail(statement, "broaden unit requires a value");
            }
            data.fwhmUnit = unquotePlotText(words[++i]);
        } else if (const auto width = parsePlotNumber(words[i])) {
            data.fwhm = *width;
            hasWidth = true;
        } else {
            fail(statement, "unexpected broaden option '" + std::string(words[i]) + "'");
        }
    }
    if (!hasWidth) {
        fail(statement, "broaden requires fwhm <number>");
    }
}

void readRange(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    const auto low = words.size() == 2 ? parsePlotNumber(words[0]) : std::nullopt;
    const auto high = words.size() == 2 ? parsePlotNumber(words[1]) : std::nullopt;
    if (!low || !high) {
        fail(statement, "range requires two numeric bounds");
    }
    const auto store = [&](auto& data) {
        if constexpr (requires { data.rangeLow; }) {
            data.rangeLow = *low;
            data.rangeHigh = *high;
            data.rangeDeclared = true;
        }
    };
    std::visit(store, reading.plot.data);
}

void readBins(PlotReading& reading, const Statement& statement) {
    dataOf<HistogramPlotData>(reading).bins = readCount(statement);
}

void readDensity(PlotReading& reading, const Statement& statement) {
    static constexpr auto words = wordTable<bool>({
        {"true", true},
        {"yes", true},
        {"1", true},
        {"false", false},
        {"no", false},
        {"0", false},
    });
    const auto density = statement.rest.empty() ? std::optional(true) : words.find(choiceOf(statement.rest));
    if (!density) {
        fail(statement, "density accepts true or false");
    }
    dataOf<HistogramPlotData>(reading).density = *density;
}

void readLimit(PlotReading& reading, const Statement& statement) {
    auto& data = dataOf<BarPlotData>(reading);
    data.limit = readCount(statement);
    data.limitDeclared = true;
}

void readDiagonal(PlotReading& reading, const Statement& statement) {
    const auto choice = choiceOf(statement.rest);
    if (!statement.rest.empty() && choice != "y=x" && choice != "yx" && choice != "true") {
        fail(statement, "diagonal accepts no value or y=x");
    }
    dataOf<ScatterPlotData>(reading).diagonal = true;
}

void readFit(PlotReading& reading, const Statement& statement) {
    if (statement.rest.empty()) {
        fail(statement, "fit requires linear or none");
    }
    const auto choice = choiceOf(statement.rest);
    const bool linear = choice == "linear";
    if (!linear && choice != "none" && choice != "false") {
        fail(statement, "scatter fit supports only linear or none");
    }
    dataOf<ScatterPlotData>(reading).fitLinear = linear;
}

void readMetrics(PlotReading& reading, const Statement& statement) {
    auto& metrics = dataOf<ScatterPlotData>(reading).metrics;
    metrics.clear();
    for (const auto word : splitPlotWords(statement.rest)) {
        auto metric = toLower(unquotePlotText(word));
        if (metric != "r2" && metric != "rmse" && metric != "mae") {
            fail(statement, "unsupported scatter metric '" + metric + "'");
        }
        metrics.push_back(std::move(metric));
    }
}

} // namespace morquill::taskdsl::plot
