#include "taskdsl/derive/derive_output.h"

#include "support/text.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>

namespace morquill::taskdsl::derive {

using plot::quotePlotText;

namespace {

std::string text(const ExprRef& expression) {
    return plot::renderPlotExpression(expression);
}

/// ` word "value"`, or nothing for an empty value.
std::string optional(std::string_view word, std::string_view value) {
    return value.empty() ? std::string() : std::string(word) + quotePlotText(value);
}

std::string renderLeaf(const DeriveCondition& leaf) {
    if (leaf.op == DeriveCompareOp::truthy) {
        return text(leaf.left);
    }
    std::string line = text(leaf.left);
    if (leaf.op == DeriveCompareOp::in) {
        line += " in [";
        std::string_view separator;
        for (const auto& value : leaf.list) {
            line += separator;
            line += text(value);
            separator = ", ";
        }
        return line + ']';
    }
    line += ' ';
    line += deriveCompareOpName(leaf.op);
    line += ' ';
    return line + text(leaf.right);
}

/// Appends the condition; goes down the last child in a loop, since chains lean that way.
void renderCondition(const DeriveCondition& condition, std::string& line) {
    std::string closing;
    const DeriveCondition* node = &condition;
    const auto opensGroup = [](const DeriveCondition& parent, const DeriveCondition& child) {
        return parent.kind == DeriveConditionKind::conjunction &&
               child.kind == DeriveConditionKind::disjunction;
    };
    while (!node->children.empty()) {
        if (node->kind == DeriveConditionKind::negation) {
            line += "not ";
        } else {
            const DeriveCondition& left = node->children.front();
            const bool grouped = opensGroup(*node, left);
            line += grouped ? "(" : "";
            renderCondition(left, line);
            line += grouped ? ")" : "";
            line += ' ';
            line += deriveConditionKindName(node->kind);
            line += ' ';
        }
        const DeriveCondition& last = node->children.back();
        if (opensGroup(*node, last)) {
            line += '(';
            closing += ')';
        }
        node = &last;
    }
    line += renderLeaf(*node);
    line += closing;
}

std::string renderAtoms(const std::string& task, const std::string& alias) {
    return "atoms(" + (plot::isPlotIdentifier(task) ? task : quotePlotText(task)) + ") as " + alias;
}

std::string render(const TasksSource& source) {
    std::string line = "tasks(";
    std::string_view separator;
    for (const auto& pattern : source.patterns) {
        line += separator;
        line += quotePlotText(pattern);
        separator = ", ";
    }
    return line + optional(", program=", source.program) + optional(", template=", source.templateName) + ")";
}

std::string render(const AtomsSource& source) {
    return renderAtoms(source.task, source.alias);
}

std::string render(const DerivedTableSource& source) {
    const std::string selector = source.derive + '.' + source.table;
    const auto parts = splitOn(selector, '.');
    const bool plain = std::all_of(parts.begin(), parts.end(), plot::isPlotIdentifier);
    return "derived(" + (plain ? selector : quotePlotText(selector)) + ")";
}

std::string render(const LetStatement& s) {
    return "let " + s.name + " = " + text(s.value);
}

std::string render(const RequireStatement& s) {
    return "require " + renderDeriveCondition(s.condition) + optional(" else ", s.message);
}

std::string render(const EmitScalarStatement& s) {
    return "emit " + s.name + " = " + text(s.value) + optional(" unit ", s.unit);
}

std::string render(const ReportStatement& s) {
    return "report " + quotePlotText(s.label) + " = " + text(s.value);
}

std::string render(const FromStatement& s) {
    return "from " + std::visit([](const auto& source) { return render(source); }, s.source);
}

std::string render(const JoinStatement& s) {
    return "join " + renderAtoms(s.task, s.alias) + " on " + s.key;
}

std::string render(const WhereStatement& s) {
    return "where " + renderDeriveCondition(s.condition);
}

std::string render(const SelectStatement& s) {
    return "select " + s.name + " = " + text(s.value);
}

std::string render(const SortStatement& s) {
    return "sort " + text(s.key) + ' ' + std::string(deriveSortDirectionName(s.direction));
}

std::string render(const LimitStatement& s) {
    return "limit " + std::to_string(s.count);
}

std::string render(const GroupByStatement& s) {
    std::string line = "group by ";
    std::string_view separator;
    for (const auto& key : s.keys) {
        line += separator;
        line += text(key.expression) + " as " + key.name;
        separator = ", ";
    }
    return line;
}

std::string render(const AggregateStatement& s) {
    return "aggregate " + s.name + " = " + text(s.value);
}

std::string render(const EmitTableStatement& s) {
    std::string line = "emit table " + s.name;
    if (s.sink != DeriveSinkFormat::none) {
        line += " to " + std::string(deriveSinkFormatName(s.sink)) + ' ' + quotePlotText(s.path);
    }
    return line;
}

std::string render(const EmitValueStatement& s) {
    return "emit value " + s.name + " to kv " + quotePlotText(s.path);
}

std::string render(const EmitReportStatement& s) {
    return "emit report to root" + optional(" ", s.path);
}

std::string render(const EmitAtomVectorStatement& s) {
    return "emit atomvec " + s.property + " = " + text(s.value);
}

std::string renderAtomSink(std::string_view statement, const std::string& target, const std::string& property,
                           const ExprRef& value) {
    return std::string(statement) + quotePlotText(target) + " from " + text(value) +
           (property.empty() ? "" : " as " + property);
}

std::string render(const EmitArtifactStatement& s) {
    return renderAtomSink("emit artifact ", s.target, s.property, s.value);
}

std::string render(const EmitKvStatement& s) {
    return renderAtomSink("emit kv ", s.target, s.property, s.value);
}

} // namespace

std::string renderDeriveCondition(const DeriveCondition& condition) {
    std::string line;
    renderCondition(condition, line);
    return line;
}

std::string renderDerive(const DeriveSpec& spec, std::string_view indent) {
    std::string block;
    block.append(indent).append("@derive ").append(spec.name).append("\n");
    for (const auto& statement : spec.statements) {
        block.append(indent).append("  ");
        block += std::visit([](const auto& s) { return render(s); }, statement);
        block += '\n';
    }
    block.append(indent).append("@end\n");
    return block;
}

} // namespace morquill::taskdsl::derive
