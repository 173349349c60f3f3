#include "taskdsl/base/source_span.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace morquill::taskdsl {

namespace {

void appendNumber(std::string& out, std::int32_t number) {
    std::array<char, 16> buffer{};
    out.append(buffer.begin(), std::to_chars(buffer.begin(), buffer.end(), number).ptr);
}

/// `<line>:<column>`.
void appendPlace(std::string& out, std::int32_t line, std::int32_t column) {
    appendNumber(out, line);
    out += ':';
    appendNumber(out, column);
}

} // namespace

std::int32_t toCoordinate(std::size_t value) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(value, most));
}

bool isValidSpan(const SourceSpan& span) noexcept {
    return span.line > 0 && span.column > 0 && span.line <= span.endLine && span.endColumn >= 1;
}

std::string formatSpan(const SourceSpan& span) {
    std::string text;
    appendSpan(text, span);
    return text;
}

void appendSpan(std::string& out, const SourceSpan& span) {
    if (!isValidSpan(span)) {
        out += span.path.empty() ? std::string_view("<unknown>") : span.path.view();
        return;
    }
    if (!span.path.empty()) {
        out += span.path.view();
        out += ':';
    }
    appendPlace(out, span.line, span.column);
    if (span.endLine != span.line || span.endColumn != span.column) {
        out += '-';
        appendPlace(out, span.endLine, span.endColumn);
    }
}

SourceSpan spanOfLine(const SharedText& path, std::size_t lineNumber, std::string_view rawText) {
    const auto indent = std::min(rawText.find_first_not_of(" \t"), rawText.size());
    SourceSpan span;
    span.path = path;
    span.line = span.endLine = toCoordinate(lineNumber);
    span.column = toCoordinate(indent + 1);
    span.endColumn = std::max(toCoordinate(rawText.size() + 1), span.column);
    return span;
}

} // namespace morquill::taskdsl
