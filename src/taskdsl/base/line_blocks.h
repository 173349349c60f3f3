#pragma once

#include "support/byte_set.h"
#include "taskdsl/base/source_line.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// Finds the end of the lines that belong to an opening line.
namespace morquill::taskdsl {

/// The end of a block: its closing line or, without one, the first line that cannot belong to it.
struct BlockEnd {
    std::size_t index = 0;
    bool isClosed = false;
};

/// The value read from a run of lines, and the first line after them.
template <class Value>
struct TakenLines {
    Value value;
    std::size_t next = 0;
};

/// The first "@end" after the head of a block; lines from `limit` on cannot belong to it.
[[nodiscard]] BlockEnd findBlockEnd(const std::vector<SourceLine>& lines, std::size_t head,
                                    std::size_t limit) noexcept;

/// The terminator of a heredoc that names none.
inline constexpr std::string_view heredocEnd = "EOF";

/// The bytes that no value on a single line can hold.
inline constexpr ByteSet lineEnds(std::string_view("\n\r"));

/// True when a directive's value opens a heredoc.
[[nodiscard]] inline bool opensHeredoc(std::string_view value) noexcept {
    return value.starts_with("<<");
}

/// The terminator of the heredoc that a directive's value (`<<`, `<< END`) opens; `heredocEnd` when none is
/// written.
[[nodiscard]] std::string_view heredocTerminator(std::string_view value) noexcept;

/// The line after `opener` that is the terminator, white space around it aside. A boundary line cannot belong
/// to the heredoc.
[[nodiscard]] BlockEnd findHeredocEnd(const std::vector<SourceLine>& lines, std::size_t opener,
                                      std::string_view terminator) noexcept;

} // namespace morquill::taskdsl
