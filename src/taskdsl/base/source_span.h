#pragma once

#include "support/shared.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// A region of a source file. Lines and columns count from 1; 0 means that no place is known.
struct SourceSpan {
    SharedText path;         ///< file the region lies in; may be empty
    std::int32_t line = 0;   ///< first line
    std::int32_t column = 0; ///< first column, in bytes
    std::int32_t endLine = 0;
    std::int32_t endColumn = 0; ///< one past the last byte

    friend bool operator==(const SourceSpan&, const SourceSpan&) = default;
};

/// A line or column of a span; one past 2^31 - 1 is clamped, so that a span never wraps round to an invalid
/// one.
[[nodiscard]] std::int32_t toCoordinate(std::size_t value) noexcept;

/// True when the span names a place: line and column at least 1, the end line not before the line, the end
/// column at least 1.
[[nodiscard]] bool isValidSpan(const SourceSpan& span) noexcept;

/// `<path>:<line>:<column>-<endLine>:<endColumn>`, without the path when it is empty and without the end when
/// it equals the start. For an invalid span, the path, or "<unknown>" when that is empty too.
[[nodiscard]] std::string formatSpan(const SourceSpan& span);

/// Appends the same to a text.
void appendSpan(std::string& out, const SourceSpan& span);

/// The span of one physical line: from its first byte that is neither blank nor tab to one past
/// its last byte.
[[nodiscard]] SourceSpan spanOfLine(const SharedText& path, std::size_t lineNumber, std::string_view rawText);

} // namespace morquill::taskdsl
