#pragma once

#include "taskdsl/base/source_span.h"

#include <string>
#include <string_view>

namespace morquill::lint {

/// The text of a parser's exception, taken apart.
struct ParseFaultParts {
    std::string file;         ///< empty when the text names no place
    taskdsl::SourceSpan span; ///< likewise invalid; an end that is not given is the start
    std::string message;
};

/// Reads `<file>:<line>:<column>[-<line>:<column>]: error: <message>`. Any other text is all message.
[[nodiscard]] ParseFaultParts splitParseFault(std::string_view text);

} // namespace morquill::lint
