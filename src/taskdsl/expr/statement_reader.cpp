#include "taskdsl/expr/statement_reader.h"

#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/expr/plot_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace morquill::taskdsl::plot {

namespace {

constexpr std::size_t tabColumns = 4;

std::int32_t toColumn(std::size_t value) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<std::size_t>(value, 1, most));
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

/// The bytes that a scan of a line must look at: quotes, escapes, braces and parentheses.
constexpr auto isSpecial = [] {
    std::array<bool, 256> special{};
    for (const char c : std::string_view("\"'\\{}()")) {
        special[static_cast<unsigned char>(c)] = true;
    }
    return special;
}();

/// The parenthesis depth behind a line that was entered with `depth`; negative when one is closed that was
/// never opened. Inside a string of either kind a backslash escapes, outside it is an ordinary byte.
std::int64_t scanLine(std::string_view text, std::int64_t depth, const SourceSpan& span,
                      std::string_view language) {
    char quote = '\0';
    std::size_t snapshot = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (!isSpecial[static_cast<unsigned char>(c)]) {
            continue;
        }
        if (quote != '\0') {
            if (c == '\\') {
                ++i;
            } else if (c == quote) {
                quote = '\0';
            }
            continue;
        }
        const bool doubled = i + 1 < text.size() && text[i + 1] == c;
        if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '{' && doubled) {
            ++snapshot;
            ++i;
        } else if (c == '}' && doubled) {
            if (snapshot == 0) {
                plotError(span, "unexpected '}}' in " + std::string(language) + " statement");
            }
            --snapshot;
            ++i;
        } else if (snapshot == 0 && (c == '(' || c == ')')) {
            depth += c == '(' ? 1 : -1;
        }
    }
    if (quote != '\0') {
        plotError(span, "unterminated string literal; strings cannot span physical lines");
    }
    if (snapshot != 0) {
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
