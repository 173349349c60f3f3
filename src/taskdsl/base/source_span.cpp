#include "taskdsl/base/source_span.h"

#include <algorithm>
#include <limits>

namespace morquill::taskdsl {

namespace {

/// Lengths past 2^31 - 1 are clamped: a span never wraps round to an invalid one.
std::int32_t toCoordinate(std::size_t value) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(value, most));
}

} // namespace

bool isValidSpan(const SourceSpan& span) noexcept {
    return span.line > 0 && span.column > 0 && span.line <= span.endLine && span.endColumn >= 1;
}

std::string formatSpan(const SourceSpan& span) {
    if (!isValidSpan(span)) {
        return span.path.empty() ? "<unknown>" : span.path.str();
    }
    std::string text;
    if (!span.path.empty()) {
        text += span.path.str();
        text += ':';
    }
    text += std::to_string(span.line) + ':' + std::to_string(span.column);
    if (span.endLine != span.line || span.endColumn != span.column) {
        text += '-' + std::to_string(span.endLine) + ':' + std::to_string(span.endColumn);
    }
    return text;
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
