#include "support/text.h"
#include "taskdsl/derive/block_reader.h"
#include "taskdsl/derive/derive_text.h"
#include "taskdsl/derive/derive_words.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <optional>

namespace morquill::taskdsl::derive {

namespace {

/// A scalar emit taken apart at its unit.
struct ScalarParts {
    std::string_view head;
    std::optional<std::string_view> unit;
};

/// The first word `unit` that has something before it, so that a value may itself be called `unit`; standing
/// alone it is a unit without a name.
ScalarParts splitUnit(std::string_view text) {
    const auto halves = splitAtWord(text, "unit", equalsNoCase(text, "unit") ? 0 : 1);
    return halves ? ScalarParts{halves->left, halves->right} : ScalarParts{text, std::nullopt};
}

/// The indented lines below an emit that ends in ":".
struct EmitModifiers {
    std::optional<std::string> unit;
    std::vector<ReportStatement> reports; ///< without their value
};

EmitModifiers readModifiers(BlockReader& reader, std::optional<std::string> unit) {
    EmitModifiers modifiers{std::move(unit), {}};
    const auto indent = reader.indent;
    const auto first = reader.next;
    while (reader.next < reader.lines.size() && reader.lines[reader.next].indent > indent) {
        const auto& line = reader.lines[reader.next++];
        const auto [word, value] = plot::splitFirstWord(line.text);
        if (equalsNoCase(word, "unit")) {
            if (modifiers.unit) {
                plot::plotError(line.span, "emit unit may be specified only once");
            }
            modifiers.unit = readLabelledText(value, "emit unit", line.span);
        } else if (equalsNoCase(word, "report")) {
            if (value.empty()) {
                plot::plotError(line.span, "emit report modifier requires a label");
            }
            modifiers.reports.push_back(
                {readLabelledText(value, "emit report label", line.span), nullptr, line.span});
        } else {
            plot::plotError(line.span, "unknown emit modifier; expected unit or report");
        }
    }
    if (reader.next == first) {
        reader.fail("emit modifier block requires at least one indented unit or report entry");
    }
    return modifiers;
}

/// The name of an atom property without the prefix that says what it belongs to.
std::string readAtomProperty(const BlockReader& reader, std::string_view text, std::string_view statement) {
    for (const std::string_view prefix : {"atoms[].", "atoms."}) {
        if (text.starts_with(prefix)) {
            text.remove_prefix(prefix.size());
            break;
        }
    }
    if (text.empty()) {
        reader.fail(std::string(statement) + " requires a property name");
    }
    if (!std::all_of(text.begin(), text.end(), isKeyChar)) {
        reader.fail("atom vector property must contain only letters, digits, '_', '-' and '.'");
    }
    return std::string(text);
}

/// What `emit kv` and `emit artifact` have in common.
struct AtomSink {
    std::string target;
    std::string property;
    ExprRef value;
};

AtomSink readAtomSink(BlockReader& reader, std::string_view text, const std::string& statement) {
    const auto halves = splitAtWord(text, "from");
    if (!halves) {
        reader.fail(statement + " must use '<target> from <expression> [as property]'");
    }
    if (halves->left.empty()) {
        reader.fail(statement + " target cannot be empty");
    }
    AtomSink sink;
    sink.target = readLabelledText(halves->left, statement + " path", reader.span);
    const auto named = splitAtWord(halves->right, "as");
    const auto source = named ? named->left : halves->right;
    if (source.empty()) {
        reader.fail(statement + " requires a source expression after 'from'");
    }
    sink.value = reader.expression(source);
    std::string_view property;
    if (named) {
        property = named->right;
    } else if (const auto* column = plot::expressionAs<plot::IdentifierExpr>(sink.value)) {
        property = column->name;
    } else {
        reader.fail(statement +
                    " requires 'as <atom-property>' when the source expression is not a bare column");
    }
    sink.property = readAtomProperty(reader, property, statement);
    return sink;
}

} // namespace

void readEmitScalar(BlockReader& reader, std::string_view text) {
    const auto head = plot::stripTrailingColon(text);
    const auto parts = splitUnit(head.value_or(trim(text)));
    if (parts.unit && parts.unit->empty()) {
        reader.fail("emit unit requires a unit name");
    }
    EmitScalarStatement statement;
    if (const auto halves = splitAtEquals(parts.head)) {
        statement.name =
            requireIdentifier(halves->left, "scalar emit name must be an identifier", reader.span);
        statement.value = reader.expression(halves->right, "emit statement requires an expression");
    } else {
        statement.name = requireIdentifier(
            parts.head, "emit shorthand requires a simple identifier because it also names the expression",
            reader.span);
        statement.value = plot::makeExpression(plot::IdentifierExpr{statement.name});
    }
    std::optional<std::string> unit;
    if (parts.unit) {
        unit = readLabelledText(*parts.unit, "emit unit", reader.span);
    }
    EmitModifiers modifiers =
        head ? readModifiers(reader, std::move(unit)) : EmitModifiers{std::move(unit), {}};
    statement.unit = modifiers.unit.value_or("");
    const ExprRef value = statement.value;
    reader.add(std::move(statement));
    for (auto& report : modifiers.reports) {
        chargeCopy(value, reader.surface, report.span);
        report.value = value;
        reader.spec.statements.emplace_back(std::move(report));
    }
}

void readEmitTable(BlockReader& reader, std::string_view text) {
    const auto [name, sink] = plot::splitFirstWord(text);
    EmitTableStatement statement;
    statement.name = requireIdentifier(name, "emit table name must be an identifier", reader.span);
    if (!sink.empty()) {
        const auto [to, rest] = plot::splitFirstWord(sink);
        if (!equalsNoCase(to, "to")) {
            reader.fail("emit table sink must be 'to csv|tsv|jsonl <path>'");
        }
        const auto [format, path] = plot::splitFirstWord(rest);
        statement.sink = sinkFormatWords.find(format).value_or(DeriveSinkFormat::none);
        if (statement.sink == DeriveSinkFormat::none) {
            reader.fail("emit table file sink must be csv, tsv, or jsonl");
        }
        statement.path = readLabelledText(path, "emit table sink path", reader.span);
    }
    reader.add(std::move(statement));
}

void readEmitValue(BlockReader& reader, std::string_view text) {
    const auto [name, sink] = plot::splitFirstWord(text);
    const auto [to, rest] = plot::splitFirstWord(sink);
    const auto [format, path] = plot::splitFirstWord(rest);
    if (format.empty()) {
        reader.fail("emit value must be 'emit value name to kv <path>'");
    }
    if (!equalsNoCase(to, "to") || !equalsNoCase(format, "kv")) {
        reader.fail("emit value currently supports only 'to kv <path>'");
    }
    EmitValueStatement statement;
    statement.name = requireIdentifier(name, "emit value name must be an identifier", reader.span);
    statement.path = readLabelledText(path, "emit value kv path", reader.span);
    reader.add(std::move(statement));
}

void readEmitReport(BlockReader& reader, std::string_view text) {
    const auto [to, rest] = plot::splitFirstWord(text);
    const auto [root, path] = plot::splitFirstWord(rest);
    if (root.empty()) {
        reader.fail("emit report must be 'emit report to root [path]'");
    }
    if (!equalsNoCase(to, "to") || !equalsNoCase(root, "root")) {
        reader.fail("emit report currently supports only 'to root [path]'");
    }
    EmitReportStatement statement;
    if (!path.empty()) {
        statement.path = readLabelledText(path, "emit report root path", reader.span);
    }
    reader.add(std::move(statement));
}

void readEmitAtomVector(BlockReader& reader, std::string_view text) {
    const auto halves = splitAtEquals(text);
    const auto property = halves ? halves->left : text;
    if (property.empty()) {
        reader.fail("emit atomvec requires a property name");
    }
    if (halves && halves->right.empty()) {
        reader.fail("emit atomvec requires an expression after '='");
    }
    EmitAtomVectorStatement statement;
    statement.property = readAtomProperty(reader, property, "emit atomvec");
    if (halves) {
        statement.value = reader.expression(halves->right);
    } else {
        // `a-b` is a property but not a field: as an expression it would be a difference.
        constexpr std::uint32_t fields = seenSelect | seenGroupBy | seenAggregate;
        const auto& name = statement.property;
        const bool field = isWordStart(name.front()) && name.find('-') == std::string::npos;
        if ((reader.seen & fields) == 0 || !field) {
            reader.fail("emit atomvec requires at least one selected/grouped/aggregate row field");
        }
        statement.value = plot::makeExpression(plot::IdentifierExpr{name});
    }
    reader.add(std::move(statement));
}

void readEmitKv(BlockReader& reader, std::string_view text) {
    auto [target, property, value] = readAtomSink(reader, text, "emit kv");
    reader.add(EmitKvStatement{std::move(target), std::move(property), std::move(value), {}});
}

void readEmitArtifact(BlockReader& reader, std::string_view text) {
    auto [target, property, value] = readAtomSink(reader, text, "emit artifact");
    reader.add(EmitArtifactStatement{std::move(target), std::move(property), std::move(value), {}});
}

} // namespace morquill::taskdsl::derive
