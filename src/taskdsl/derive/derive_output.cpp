#include "taskdsl/derive/derive_output.h"

#include "support/line_builder.h"
#include "support/text.h"
#include "taskdsl/derive/condition_output.h"
#include "taskdsl/expr/expression_walk.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <utility>

namespace morquill::taskdsl::derive {

using plot::quotePlotText;

namespace {

/// What the reader takes off the front of an atom property.
constexpr std::string_view propertyPrefix = "atoms.";

/// ` word "value"`, or nothing for an empty value.
std::string optional(std::string_view word, std::string_view value) {
    return value.empty() ? std::string() : std::string(word) + quotePlotText(value);
}

std::string named(std::string_view keyword, std::string_view name) {
    return std::string(keyword).append(" ").append(name);
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

/// Prints the statements of one derive, a line each.
class StatementPrinter {
  public:
    StatementPrinter(std::string_view derive, const WarningSink& warnings) : check_(derive, warnings) {}

    /// Reports what of the derive does not read back.
    void warn() const { check_.warn(); }

    std::string operator()(const LetStatement& s) {
        return print(s, &LetStatement::value, named("let", s.name) + " = ", "");
    }

    std::string operator()(const RequireStatement& s) {
        const auto mark = check_.mark();
        std::string line = "require " + printCondition(s.condition, "require", ElseWord::ends, check_) +
                           optional(" else ", s.message);
        check_.confirm(mark, line, "require", s);
        return line;
    }

    std::string operator()(const EmitScalarStatement& s) {
        const std::string head = named("emit", s.name) + " = ";
        const std::string tail = optional(" unit ", s.unit);
        if (isEmitWord(s.name)) {
            check_.report(singleQuoted(named("emit", s.name)) + " begins another statement");
            return head + plot::renderPlotExpression(s.value) + tail;
        }
        return print(s, &EmitScalarStatement::value, head, tail);
    }

    std::string operator()(const ReportStatement& s) {
        checkText("report", s.label);
        return print(s, &ReportStatement::value, "report " + quotePlotText(s.label) + " = ", "");
    }

    std::string operator()(const FromStatement& s) {
        return "from " + std::visit([](const auto& source) { return render(source); }, s.source);
    }

    std::string operator()(const JoinStatement& s) {
        return "join " + renderAtoms(s.task, s.alias) + " on " + s.key;
    }

    std::string operator()(const WhereStatement& s) {
        const auto mark = check_.mark();
        std::string line = "where " + printCondition(s.condition, "where", ElseWord::ordinary, check_);
        check_.confirm(mark, line, "where", s);
        return line;
    }

    std::string operator()(const SelectStatement& s) {
        return print(s, &SelectStatement::value, named("select", s.name) + " = ", "");
    }

    std::string operator()(const SortStatement& s) {
        return print(s, &SortStatement::key, "sort ",
                     ' ' + std::string(deriveSortDirectionName(s.direction)));
    }

    std::string operator()(const LimitStatement& s) { return "limit " + std::to_string(s.count); }

    std::string operator()(const GroupByStatement& s) {
        const auto mark = check_.mark();
        std::string line = "group by ";
        std::string_view separator;
        for (const auto& key : s.keys) {
            line += separator;
            line += check_.print(key.expression, "group by", [&](const auto& text, const ExprRef& reading) {
                return readsAs("group by " + text + " as " + key.name,
                               GroupByStatement{{{key.name, reading}}, {}});
            });
            line += " as " + key.name;
            separator = ", ";
        }
        check_.confirm(mark, line, "group by", s);
        return line;
    }

    std::string operator()(const AggregateStatement& s) {
        const std::string head = named("aggregate", s.name) + " = ";
        return plot::callsFunction(s.value) ? print(s, &AggregateStatement::value, head, "")
                                            : tryForms(s, &AggregateStatement::value, head, "");
    }

    std::string operator()(const EmitTableStatement& s) {
        std::string line = "emit table " + s.name;
        if (s.sink != DeriveSinkFormat::none) {
            checkText("emit table", s.path);
            line += " to " + std::string(deriveSinkFormatName(s.sink)) + ' ' + quotePlotText(s.path);
        }
        return line;
    }

    std::string operator()(const EmitValueStatement& s) {
        checkText("emit value", s.path);
        return "emit value " + s.name + " to kv " + quotePlotText(s.path);
    }

    std::string operator()(const EmitReportStatement& s) {
        return "emit report to root" + optional(" ", s.path);
    }

    std::string operator()(const EmitAtomVectorStatement& s) {
        const auto read = asRead(s);
        return print(read, &EmitAtomVectorStatement::value, named("emit atomvec", s.property) + " = ", "");
    }

    std::string operator()(const EmitArtifactStatement& s) { return printAtomSink("emit artifact", s); }

    std::string operator()(const EmitKvStatement& s) { return printAtomSink("emit kv", s); }

  private:
    /// The statement's line from `head` to `tail`, its one expression between them.
    template <class Statement>
    std::string print(const Statement& s, ExprRef Statement::*expression, const std::string& head,
                      const std::string& tail) {
        return between(head,
                       check_.print(s.*expression, subjectOf(head), readsBetween(s, expression, head, tail)),
                       tail);
    }

    /// The same for an expression that has to be tried whatever it looks like.
    template <class Statement>
    std::string tryForms(const Statement& s, ExprRef Statement::*expression, const std::string& head,
                         const std::string& tail) {
        return between(
            head, check_.tryForms(s.*expression, subjectOf(head), readsBetween(s, expression, head, tail)),
            tail);
    }

    static std::string between(std::string_view head, std::string_view text, std::string_view tail) {
        std::string line;
        line.reserve(head.size() + text.size() + tail.size());
        return line.append(head).append(text).append(tail);
    }

    /// The name of the statement in a warning: its head without the equals sign.
    static std::string_view subjectOf(std::string_view head) {
        constexpr std::string_view equals = " = ";
        return trim(head.ends_with(equals) ? head.substr(0, head.size() - equals.size()) : head);
    }

    /// Whether the statement, its expression printed as `text`, reads as the statement with `reading`.
    template <class Statement>
    static auto readsBetween(const Statement& s, ExprRef Statement::*expression, const std::string& head,
                             const std::string& tail) {
        return [&s, expression, &head, &tail](const std::string& text, const ExprRef& reading) {
            Statement expected = s;
            expected.*expression = reading;
            return readsAs(head + text + tail, expected);
        };
    }

    template <class Statement>
    std::string printAtomSink(const std::string& keyword, const Statement& s) {
        checkText(keyword, s.target);
        const auto read = asRead(s);
        return print(read, &Statement::value, keyword + ' ' + quotePlotText(s.target) + " from ",
                     s.property.empty() ? "" : " as " + s.property);
    }

    /// The statement with the property that the reader leaves of the printed one.
    template <class Statement>
    Statement asRead(const Statement& s) {
        Statement read = s;
        if (s.property.starts_with(propertyPrefix)) {
            check_.report("the property " + singleQuoted(s.property) + " loses its " +
                          singleQuoted(propertyPrefix));
            read.property.erase(0, propertyPrefix.size());
        }
        return read;
    }

    /// A text that a statement needs may be empty once values are put in.
    void checkText(std::string_view statement, std::string_view text) {
        if (text.empty()) {
            check_.report("a text of " + singleQuoted(statement) + " is empty");
        }
    }

    ReadBackCheck check_;
};

} // namespace

std::string renderDeriveCondition(const DeriveCondition& condition) {
    const WarningSink nobody;
    ReadBackCheck check("", nobody);
    return printCondition(condition, "", ElseWord::ordinary, check);
}

std::string renderDerive(const DeriveSpec& spec, std::string_view indent, const WarningSink& warnings) {
    StatementPrinter printer(spec.name, warnings);
    constexpr std::size_t typicalLine = 64; // in bytes
    LineBuilder block(indent);
    block.reserve(typicalLine * (spec.statements.size() + 2));
    block.line("@derive ", spec.name);
    block.deeper();
    for (const auto& statement : spec.statements) {
        block.line(std::visit(printer, statement));
    }
    block.shallower();
    block.line("@end");
    printer.warn();
    return block.take();
}

} // namespace morquill::taskdsl::derive
