#include "taskdsl/base/source_span.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace morquill::taskdsl {

namespace {

/// Room for four coordinates of eleven characters each, and what is between them.
using PlaceText = std::array<char, 48>;

/// Writes `<line>:<column>`; returns the place after it.
char* writePlace(char* at, PlaceText& text, std::int32_t line, std::int32_t column) noexcept {
    at = std::to_chars(at, text.end(), line).ptr;
    *at++ = ':';
    return std::to_chars(at, text.end(), column).ptr;
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
    PlaceText text; // not initialised: explain prints a place for every line of a file
    char* end = writePlace(text.begin(), text, span.line, span.column);
    if (span.endLine != span.line || span.endColumn != span.column) {
        *end++ = '-';
        end = writePlace(end, text, span.endLine, span.endColumn);
    }
    out.append(text.begin(), end);
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
