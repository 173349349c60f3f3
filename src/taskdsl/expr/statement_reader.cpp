#include "taskdsl/expr/statement_reader.h"

#include "support/byte_set.h"
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
    static constexpr ByteSet marks("\"'\\{}()"); // whatever else a line holds is passed over
    const auto nextMark = [text](std::size_t at) {
        while (at < text.size() && !marks.contains(text[at])) {
            ++at;
        }
        return at;
    };
    QuoteWalk walk(quote_rules::statementLine);
    for (auto at = nextMark(0); at < text.size(); at = nextMark(walk.step(text, at))) {
        const char c = text[at];
        if (!walk.inOpen()) {
            continue;
        }
        if (c == '(' || c == ')') {
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
    std::vector<PlotStatement> statements;
    statements.reserve(lines.size());
    bool pending = false; // the last statement goes on
    std::string joined;   // its text, once it has a second line
    std::int64_t depth = 0;
    for (const SourceLine& line : lines) {
        const auto text = stripPlotComment(line.text());
        if (text.empty()) {
            continue;
        }
        if (pending) {
            if (joined.empty()) {
                joined = statements.back().text;
            }
            joined += ' ';
            joined += text;
        } else {
            const auto indent = indentOf(line.text());
            const auto number = static_cast<std::int32_t>(line.lineNumber);
            statements.push_back(
                {line.slice(text), {line.originPath, number, toColumn(indent + 1), number, 0}, indent});
        }
        SourceSpan& span = statements.back().span;
        span.endLine = static_cast<std::int32_t>(line.lineNumber);
        span.endColumn = toColumn(line.text().size());

        depth = scanLine(text, depth, span, language);
        if (depth < 0) {
            plotError(span, "unmatched ')' in " + std::string(language) + " statement");
        }
        pending = depth > 0 || endsInOperator(text);
        if (!pending && !joined.empty()) {
            statements.back().text = TextSlice(std::exchange(joined, {}));
        }
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
