#include "support/text.h"
#include "taskdsl/derive/block_reader.h"
#include "taskdsl/derive/condition.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/derive/derive_words.h"
#include "taskdsl/expr/expression_walk.h"
#include "taskdsl/expr/plot_text.h"

#include <charconv>
#include <optional>

namespace morquill::taskdsl::derive {

namespace {

/// A call argument is positional when it has no name.
std::string_view nameOf(const plot::PlotCallArgument& argument) noexcept {
    return argument.named ? std::string_view(argument.name) : std::string_view{};
}

void setOnce(const BlockReader& reader, std::optional<std::string>& slot, const std::string& value,
             std::string_view repeated) {
    if (slot) {
        reader.fail(std::string(repeated));
    }
    slot = value;
}

TasksSource readTasksSource(BlockReader& reader, std::string_view text) {
    const auto expression = plot::parsePlotExpression(text, reader.span);
    const auto* call = plot::expressionAs<plot::CallExpr>(expression);
    if (call == nullptr || call->name != "tasks") {
        reader.fail("from currently supports only tasks(...) sources");
    }
    TasksSource source;
    std::optional<std::string> program;
    std::optional<std::string> templateName;
    for (const auto& argument : call->arguments) {
        const auto name = nameOf(argument);
        const bool pattern = name.empty() || name == "name" || name == "pattern";
        if (!pattern && name != "program" && name != "template" && name != "template_task") {
            reader.fail("unsupported tasks() selector '" + std::string(name) + "'");
        }
        const auto& value = plot::requireNameOrString(argument.value, "tasks() selector", reader.span);
        if (pattern) {
            source.patterns.push_back(value);
        } else if (name == "program") {
            setOnce(reader, program, value, "tasks() program selector may be specified only once");
        } else {
            setOnce(reader, templateName, value, "tasks() template selector may be specified only once");
        }
    }
    if (source.patterns.empty()) {
        source.patterns.emplace_back("*");
    }
    source.program = program.value_or("");
    source.templateName = templateName.value_or("");
    return source;
}

AtomsSource readAtomsSource(BlockReader& reader, std::string_view text) {
    const auto halves = splitAtWord(text, "as");
    if (!halves) {
        reader.fail("atoms(task) source requires 'as alias'");
    }
    const auto expression =
        halves->left.empty() ? nullptr : plot::parsePlotExpression(halves->left, reader.span);
    const auto* call = plot::expressionAs<plot::CallExpr>(expression);
    if (call == nullptr || call->name != "atoms") {
        reader.fail("atom table source must be atoms(task) as alias");
    }
    if (call->arguments.empty()) {
        reader.fail("atoms() requires exactly one task argument");
    }
    std::optional<std::string> task;
    for (const auto& argument : call->arguments) {
        if (argument.named && (task || argument.name != "task")) {
            reader.fail("atoms() accepts only one task argument");
        }
        if (task) {
            reader.fail("atoms() accepts exactly one task");
        }
        task = plot::requireNameOrString(argument.value, "atoms() task", reader.span);
    }
    return {*task,
            requireIdentifier(halves->right, "atom source alias must be a simple identifier", reader.span)};
}

DerivedTableSource derivedTable(const BlockReader& reader, std::string_view derive, std::string_view table) {
    return {requireIdentifier(derive, "derived() derive id must be an identifier", reader.span),
            requireIdentifier(table, "derived() table name must be an identifier", reader.span)};
}

/// `derived(derive.table)`: the names before and after the first dot.
DerivedTableSource splitShorthand(const BlockReader& reader, std::string_view text) {
    const auto selector = trim(text);
    const auto dot = selector.find('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == selector.size()) {
        reader.fail("derived() shorthand must be 'derive.table'");
    }
    return derivedTable(reader, selector.substr(0, dot), selector.substr(dot + 1));
}

/// Unlike the `derived(...)` of a plot, this one takes no second positional argument, may name the first one
/// `derive`, and refuses a selector that is given twice.
DerivedTableSource readDerivedSource(BlockReader& reader, std::string_view text) {
    const auto expression = plot::parsePlotExpression(text, reader.span);
    const auto* call = plot::expressionAs<plot::CallExpr>(expression);
    if (call == nullptr || !equalsNoCase(call->name, "derived")) {
        reader.fail("derived table source must be derived(derive.table) or derived(derive, table=name)");
    }
    std::optional<std::string> derive;
    std::optional<std::string> table;
    bool positional = false;
    for (const auto& argument : call->arguments) {
        const auto name = nameOf(argument);
        if (name.empty() || name == "derive") {
            if (name.empty() && positional) {
                reader.fail("derived() accepts one positional selector");
            }
            positional = positional || name.empty();
            setOnce(reader, derive,
                    plot::requireNameOrString(argument.value, "derived() selector", reader.span),
                    "derived() derive selector may be specified only once");
        } else if (name == "table" || name == "name") {
            setOnce(reader, table,
                    plot::requireNameOrString(argument.value, "derived() table selector", reader.span),
                    "derived() table selector may be specified only once");
        } else {
            reader.fail("unsupported derived() selector '" + std::string(name) + "'");
        }
    }
    if (!derive) {
        reader.fail("derived() requires a derive selector");
    }
    if (!table) {
        return splitShorthand(reader, *derive);
    }
    return derivedTable(reader, trim(*derive), trim(*table));
}

/// A list entry that names what it holds.
struct NamedEntry {
    std::string_view name;
    std::string_view expression;
};

/// `name = expression`, `expression as name`, or a bare identifier that names itself.
NamedEntry splitSelectEntry(const BlockReader& reader, std::string_view entry) {
    if (const auto halves = splitAtEquals(entry)) {
        return {halves->left, halves->right};
    }
    if (const auto halves = splitAtWord(entry, "as")) {
        return {halves->right, halves->left};
    }
    if (!plot::isPlotIdentifier(entry)) {
        reader.fail(
            "select entry must be 'name = expression', 'expression as name', or a bare row identifier");
    }
    return {entry, entry};
}

/// An entry of a sort list.
struct SortEntry {
    std::string_view key;
    DeriveSortDirection direction = DeriveSortDirection::asc;
};

/// Splits "asc" or "desc" off the end of a sort key.
SortEntry splitDirection(std::string_view entry) noexcept {
    const auto blank = entry.find_last_of(" \t");
    const auto word = entry.substr(blank == std::string_view::npos ? 0 : blank + 1);
    const auto direction = sortDirectionWords.find(word);
    return direction ? SortEntry{trim(entry.substr(0, entry.size() - word.size())), *direction}
                     : SortEntry{entry};
}

} // namespace

void readFrom(BlockReader& reader, std::string_view text) {
    FromStatement statement;
    const std::string beginning = toLower(text.substr(0, 8));
    if (beginning.starts_with("tasks(")) {
        statement.source = readTasksSource(reader, text);
    } else if (beginning.starts_with("atoms(")) {
        auto source = readAtomsSource(reader, text);
        reader.aliases.insert(source.alias);
        reader.seen |= seenAtomsSource;
        statement.source = std::move(source);
    } else if (beginning.starts_with("derived(")) {
        statement.source = readDerivedSource(reader, text);
        reader.seen |= seenDerivedSource;
    } else {
        reader.fail("from source must be tasks(...), atoms(task) as alias, or derived(derive.table)");
    }
    reader.add(std::move(statement));
}

void readJoin(BlockReader& reader, std::string_view text) {
    const auto halves = splitAtWord(text, "on");
    if (!halves || halves->left.empty()) {
        reader.fail("join must be 'join atoms(task) as alias on atom.id'");
    }
    if (!equalsNoCase(halves->right, "atom.id")) {
        reader.fail("atom joins currently require 'on atom.id'");
    }
    auto source = readAtomsSource(reader, halves->left);
    if (!reader.aliases.insert(source.alias).second) {
        reader.fail("duplicate atom source alias '" + source.alias + "'");
    }
    JoinStatement statement;
    statement.task = std::move(source.task);
    statement.alias = std::move(source.alias);
    statement.key = "atom.id";
    reader.add(std::move(statement));
}

void readWhere(BlockReader& reader, std::string_view text) {
    WhereStatement statement;
    statement.condition = parseDeriveCondition(text, reader.surface, reader.span);
    reader.add(std::move(statement));
}

void readSelect(BlockReader& reader, std::string_view text) {
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            reader.fail("select list contains an empty entry");
        }
        const auto parts = splitSelectEntry(reader, entry);
        SelectStatement statement;
        statement.name =
            requireIdentifier(parts.name, "select column name must be an identifier", reader.span);
        statement.value = reader.expression(parts.expression, "select statement requires an expression");
        if (!reader.selected.insert(statement.name).second) {
            reader.fail("duplicate select column '" + statement.name + "'");
        }
        reader.add(std::move(statement));
    }
}

void readGroupBy(BlockReader& reader, std::string_view text) {
    GroupByStatement statement;
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            reader.fail("group by contains an empty key");
        }
        const auto halves = splitAtWord(entry, "as");
        if (!halves && !plot::isPlotIdentifier(entry)) {
            reader.fail("group by expression requires 'as name' when it is not a bare identifier");
        }
        DeriveGroupKey key;
        key.expression =
            reader.expression(halves ? halves->left : entry, "group by key requires an expression");
        key.name = requireIdentifier(halves ? halves->right : entry,
                                     "group by key name must be an identifier", reader.span);
        if (!reader.groupKeys.insert(key.name).second) {
            reader.fail("duplicate table column/group key '" + key.name + "'");
        }
        statement.keys.push_back(std::move(key));
    }
    reader.add(std::move(statement));
}

namespace {

/// True for a value that calls a function, somewhere in it. A value in parentheses passes, too:
/// a formula may hold no call once it is expanded, and its expansion is printed in parentheses.
bool isAggregate(const ExprRef& value, std::string_view text) {
    return plot::callsFunction(value) || insideParentheses(text);
}

} // namespace

void readAggregate(BlockReader& reader, std::string_view text) {
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            reader.fail("aggregate list contains an empty entry");
        }
        const auto halves = splitAtEquals(entry);
        if (!halves) {
            reader.fail("aggregate entry must be 'name = function(expression)'");
        }
        AggregateStatement statement;
        statement.name = requireIdentifier(halves->left, "aggregate name must be an identifier", reader.span);
        if (halves->right.empty()) {
            reader.fail("aggregate statement requires an expression");
        }
        const auto written = plot::parsePlotExpression(halves->right, reader.span);
        statement.value = expandFormulas(written, reader.surface, reader.span);
        if (!isAggregate(written, halves->right)) {
            reader.fail("aggregate entry must be 'name = function(expression)'");
        }
        if (!reader.aggregates.insert(statement.name).second) {
            reader.fail("duplicate aggregate column '" + statement.name + "'");
        }
        if (reader.groupKeys.contains(statement.name)) {
            reader.fail("duplicate table column/group key '" + statement.name + "'");
        }
        reader.add(std::move(statement));
    }
}

void readSort(BlockReader& reader, std::string_view text) {
    if (const auto first = plot::splitFirstWord(text); equalsNoCase(first.word, "by")) {
        text = first.rest;
    }
    if (text.empty()) {
        reader.fail("sort requires at least one expression");
    }
    for (const auto entry : splitAtCommas(text)) {
        if (entry.empty()) {
            reader.fail("sort list contains an empty entry");
        }
        SortStatement statement;
        const auto [key, direction] = splitDirection(entry);
        statement.direction = direction;
        statement.key = reader.expression(key, "sort statement requires an expression");
        reader.add(std::move(statement));
    }
}

void readLimit(BlockReader& reader, std::string_view text) {
    LimitStatement statement;
    const auto digits = text.starts_with('+') ? text.substr(1) : text;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), statement.count);
    if (error != std::errc{} || end != digits.data() + digits.size()) {
        reader.fail("limit requires a positive integer");
    }
    if (statement.count == 0) {
        reader.fail("limit must be greater than zero");
    }
    reader.add(std::move(statement));
}

} // namespace morquill::taskdsl::derive
