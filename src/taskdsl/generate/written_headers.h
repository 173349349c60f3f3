#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The task headers of one text, before anything is expanded.
namespace morquill::taskdsl {

/// A task header as it is written.
struct WrittenHeader {
    std::string name;     ///< without its quotes, `[key]` as it is
    std::size_t line = 0; ///< from 1
};

/// The headers in the text of a task file itself, in order. Those inside a loop are listed once,
/// however often the loop runs; what includes and fragments would bring is not listed.
/// `$` lines in heredocs, continued commands and `@plot` or `@derive` blocks do not count. Throws nothing:
/// a text that the parser refuses is read as far as it makes sense.
[[nodiscard]] std::vector<WrittenHeader> listWrittenHeaders(std::string_view text);

} // namespace morquill::taskdsl
