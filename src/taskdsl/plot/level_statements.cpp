#include "support/number.h"
#include "support/text.h"
#include "taskdsl/expr/plot_text.h"
#include "taskdsl/plot/statements.h"

#include <optional>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

/// An id and the text after it.
struct IdAndRest {
    std::string id;
    std::string_view rest;
};

IdAndRest readId(const Statement& statement, const char* missing) {
    const auto [word, rest] = splitFirstWord(statement.rest);
    if (word.empty()) {
        fail(statement, missing);
    }
    return {unquotePlotText(word), rest};
}

ExprRef readPointExpression(std::string_view text, const Statement& statement) {
    if (text.empty()) {
        fail(statement, "point value requires an expression");
    }
    return parsePlotExpression(text, statement.span);
}

std::int32_t readMultiplicity(std::string_view value, const Statement& statement) {
    if (const auto named = parseMultiplicityWord(value)) {
        return *named;
    }
    const auto multiplicity = readLeadingInt(value);
    if (!multiplicity) {
        fail(statement,
             "column multiplicity must be singlet, doublet, triplet, quartet, or a positive integer");
    }
    return *multiplicity;
}

/// A root: a positive integer that takes up the whole word and may have a plus sign.
std::optional<std::int32_t> readRoot(std::string_view word) {
    return readPositiveInt(word.starts_with('+') ? word.substr(1) : word);
}

/// The words of an arrow, taken one after the other.
struct ArrowWords {
    const Statement& statement;
    std::vector<std::string_view> words;
    std::size_t at = 0;

    [[nodiscard]] bool done() const noexcept { return at == words.size(); }

    /// The next word; fails when there is none.
    std::string_view take(const char* missing) {
        if (done()) {
            fail(statement, missing);
        }
        return words[at++];
    }

    /// True, and taken, when the next word is one of `wanted`.
    bool skip(std::initializer_list<std::string_view> wanted) {
        for (const auto word : wanted) {
            if (!done() && equalsNoCase(words[at], word)) {
                ++at;
                return true;
            }
        }
        return false;
    }

    std::string column(const char* missing, const char* empty) {
        auto name = unquotePlotText(take(missing));
        if (name.empty()) {
            fail(statement, empty);
        }
        return name;
    }

    std::int32_t root(const char* missing, const char* invalid) {
        const auto number = readRoot(take(missing));
        if (!number) {
            fail(statement, invalid);
        }
        return *number;
    }

    bool skipRootWord() { return skip({"root", "state", "s"}); }
};

/// Reads what follows `to`: a root of a column, or the nearest one below or above.
void readArrowTarget(ExcitedArrow& arrow, ArrowWords& words) {
    auto column = words.column("arrow is missing target column", "arrow target column must not be empty");
    const auto setRelative = [&](ArrowTargetMode mode) {
        arrow.targetMode = mode;
        arrow.relativeColumn = std::move(column);
    };
    const auto setRoot = [&] {
        arrow.targetRoot =
            words.root("arrow is missing target root", "arrow target requires a positive integer root");
        arrow.targetColumn = std::move(column);
    };
    if (words.done()) {
        fail(words.statement, "arrow target requires root <n>, first lower, or first higher");
    }
    if (words.skipRootWord()) {
        setRoot();
        return;
    }
    if (words.skip({"first"})) {
        const auto mode = parseArrowTarget(words.take("arrow first target requires lower or higher"));
        if (!mode) {
            fail(words.statement, "arrow first target must be lower or higher");
        }
        setRelative(*mode);
        return;
    }
    if (const auto mode = parseArrowTarget(words.words[words.at])) {
        ++words.at;
        setRelative(*mode);
        return;
    }
    setRoot();
}

void readArrowOptions(ExcitedArrow& arrow, ArrowWords& words) {
    while (!words.done()) {
        if (words.skip({"style"})) {
            const auto style = parseArrowStyle(words.take("arrow style requires solid or dashed"));
            if (!style) {
                fail(words.statement, "arrow style must be solid or dashed");
            }
            arrow.style = *style;
            continue;
        }
        const auto word = words.words[words.at++];
        const auto style = parseArrowStyle(word);
        if (!style) {
            fail(words.statement, "unexpected arrow option '" + std::string(word) + "'");
        }
        arrow.style = *style;
    }
}

} // namespace

void readPoint(PlotReading& reading, const Statement& statement) {
    auto [id, rest] = readId(statement, "point requires an id");
    const auto [head, options] = splitKeywordOptions(rest, {"label", "value"});
    if (!head.empty()) {
        fail(statement, "unexpected text after barrier point id: '" + std::string(head) + "'");
    }
    BarrierPoint point;
    point.id = std::move(id);
    point.span = statement.span;
    for (const auto& [keyword, value] : options) {
        if (keyword == "label") {
            point.label = unquotePlotText(value);
        } else {
            point.value = readPointExpression(value, statement);
        }
    }
    dataOf<BarrierPlotData>(reading).points.push_back(std::move(point));
    reading.atPoint = true;
}

void readPointLabel(PlotReading& reading, const Statement& statement) {
    dataOf<BarrierPlotData>(reading).points.back().label = unquotePlotText(statement.rest);
}

void readPointValue(PlotReading& reading, const Statement& statement) {
    dataOf<BarrierPlotData>(reading).points.back().value = readPointExpression(statement.rest, statement);
}

void readColumn(PlotReading& reading, const Statement& statement) {
    auto [id, rest] = readId(statement, "column requires an id");
    auto* excited = std::get_if<ExcitedPlotData>(&reading.plot.data);
    const auto [head, options] = excited != nullptr
                                     ? splitKeywordOptions(rest, {"label", "task", "multiplicity"})
                                     : splitKeywordOptions(rest, {"label", "task"});
    if (!head.empty()) {
        fail(statement, "unexpected text after frontier column id: '" + std::string(head) + "'");
    }
    PlotColumn column;
    column.id = column.label = column.task = std::move(id);
    column.span = statement.span;
    for (const auto& [keyword, value] : options) {
        if (keyword == "label") {
            column.label = unquotePlotText(value);
        } else if (keyword == "task") {
            const auto word = splitFirstWord(value).word;
            if (word.empty()) {
                fail(statement, "column task requires a task name");
            }
            column.task = unquotePlotText(word);
        } else {
            column.multiplicity = readMultiplicity(value, statement);
            column.multiplicityDeclared = true;
        }
    }
    (excited != nullptr ? excited->columns : dataOf<FrontierPlotData>(reading).columns)
        .push_back(std::move(column));
}

void readOrbitals(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.empty()) {
        fail(statement, "orbitals requires at least one orbital selector");
    }
    auto& orbitals = dataOf<FrontierPlotData>(reading).orbitals;
    orbitals.clear();
    for (const auto word : words) {
        orbitals.push_back(unquotePlotText(word));
    }
}

void readSpin(PlotReading& reading, const Statement& statement) {
    const auto spin =
        statement.rest.empty() ? SpinSelection::automatic : parseSpinSelection(choiceOf(statement.rest));
    if (!spin) {
        fail(statement, "frontier spin must be auto, alpha, beta, or both");
    }
    dataOf<FrontierPlotData>(reading).spin = *spin;
}

void readRoots(PlotReading& reading, const Statement& statement) {
    const auto words = splitPlotWords(statement.rest);
    if (words.empty()) {
        fail(statement, "roots requires at least one root selector or all");
    }
    auto& roots = dataOf<ExcitedPlotData>(reading).roots;
    roots.clear();
    for (const auto word : words) {
        const auto text = unquotePlotText(word);
        if (text == "*" || equalsNoCase(text, "all")) {
            roots.clear();
            return;
        }
        const auto root = readRoot(text);
        if (!root) {
            fail(statement, "roots requires a positive integer root");
        }
        roots.push_back(*root);
    }
}

void readArrow(PlotReading& reading, const Statement& statement) {
    ArrowWords words{statement, splitPlotWords(statement.rest)};
    if (words.done()) {
        fail(statement, "arrow requires a source and target");
    }
    ExcitedArrow arrow;
    arrow.span = statement.span;
    (void)words.skip({"from"});
    arrow.sourceColumn =
        words.column("arrow is missing source column", "arrow source column must not be empty");
    (void)words.skipRootWord();
    arrow.sourceRoot =
        words.root("arrow is missing source root", "arrow source requires a positive integer root");
    if (!words.skip({"to", "->", "=>"})) {
        fail(statement, "arrow requires 'to' between source and target");
    }
    if (words.done()) {
        fail(statement, "arrow target is missing");
    }
    readArrowTarget(arrow, words);
    readArrowOptions(arrow, words);
    dataOf<ExcitedPlotData>(reading).arrows.push_back(std::move(arrow));
}

void readUnit(PlotReading& reading, const Statement& statement) {
    if (statement.rest.empty()) {
        fail(statement, "unit requires a value");
    }
    const auto store = [&](auto& data) {
        if constexpr (requires { data.unit; }) {
            data.unit = unquotePlotText(statement.rest);
        }
    };
    std::visit(store, reading.plot.data);
}

} // namespace morquill::taskdsl::plot
