#include "taskdsl/expr/statement_reader.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

constexpr std::size_t tabColumns = 4;

/// The end column of an empty line, too, is at least 1.
std::int32_t toColumn(std::size_t value) noexcept {
    return toCoordinate(std::max<std::size_t>(value, 1));
}

std::size_t indentOf(std::string_view rawLine) noexcept {
    std::size_t indent = 0;
    for (const char c : rawLine) {
        if (c == ' ') {
            ++indent;
        } else if (c == '\t') {
            indent += tabColumns;
        } else {
            break;
        }
    }
    return indent;
}

/// The parenthesis depth after a line that was entered with `depth`; negative when one is closed that was
/// never opened.
std::int64_t scanLine(std::string_view text, std::int64_t depth, const SourceSpan& span,
                      std::string_view language) {
    QuoteWalk walk(quote_rules::statementLine);
    for (std::size_t at = 0; at < text.size(); at = walk.step(text, at)) {
        const char c = text[at];
        if ((c != '(' && c != ')' && c != '}') || !walk.inOpen()) {
            continue;
        }
        if (c != '}') {
            depth += c == '(' ? 1 : -1;
        } else if (text.substr(at).starts_with("}}")) {
            plotError(span, "unexpected '}}' in " + std::string(language) + " statement");
        }
    }
    if (walk.inQuotes()) {
        plotError(span, "unterminated string literal; strings cannot span physical lines");
    }
    if (walk.inSnapshot()) {
        plotError(span, "unterminated '{{ ... }}' snapshot reference; snapshots cannot span physical lines");
    }
    return depth;
}

} // namespace

std::vector<PlotStatement> readPlotStatements(const std::vector<SourceLine>& lines,
                                              std::string_view language) {
    constexpr std::string_view continuing = "*+,-/";
    std::vector<PlotStatement> statements;
    statements.reserve(lines.size());
    bool pending = false; // the last statement goes on
    std::int64_t depth = 0;
    for (const SourceLine& line : lines) {
        const auto text = stripPlotComment(line.text());
        if (text.empty()) {
            continue;
        }
        if (pending) {
            statements.back().text += ' ';
            statements.back().text += text;
        } else {
            const auto indent = indentOf(line.text());
            const auto number = static_cast<std::int32_t>(line.lineNumber);
            statements.push_back(
                {std::string(text), {line.originPath, number, toColumn(indent + 1), number, 0}, indent});
        }
        SourceSpan& span = statements.back().span;
        span.endLine = static_cast<std::int32_t>(line.lineNumber);
        span.endColumn = toColumn(line.text().size());

        depth = scanLine(text, depth, span, language);
        if (depth < 0) {
            plotError(span, "unmatched ')' in " + std::string(language) + " statement");
        }
        pending = depth > 0 || continuing.find(text.back()) != std::string_view::npos;
    }
    if (pending) {
        const std::string noun(language);
        plotError(statements.back().span, depth > 0 ? "unterminated parenthesized " + noun + " statement"
                                                    : noun + " statement ends with a continuation operator");
    }
    return statements;
}

void plotError(const SourceSpan& span, std::string message) {
    throw DiagnosticError(span, std::move(message));
}

} // namespace morquill::taskdsl::plot
