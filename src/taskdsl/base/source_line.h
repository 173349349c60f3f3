#pragma once

#include "taskdsl/base/source_span.h"

#include <cstdint>
#include <string>
#include <vector>

namespace morquill::taskdsl {

/// One line on its way through the parser.
struct SourceLine {
    std::string text;               ///< raw text without the line end
    SharedText originPath;          ///< file it came from; empty means the file being parsed
    std::uint32_t lineNumber = 0;   ///< in its own file, from 1
    bool directiveBoundary = false; ///< a synthetic empty line that closes the directive block before it
    bool verbatim = false;          ///< belongs to a heredoc or text body and is taken as it stands
};

/// A `@plot`, `%plot` or `@derive` block as it was found, before its own language is applied.
struct CapturedBlock {
    std::string header;            ///< text behind the keyword, comment removed and trimmed
    SourceSpan span;               ///< the header line
    std::vector<SourceLine> lines; ///< the body, without the closing "@end"; every line has its origin path
};

} // namespace morquill::taskdsl
