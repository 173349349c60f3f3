#pragma once

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/source_line.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// The name of a file in a message; "<memory>" when there is none.
[[nodiscard]] inline std::string shownPath(std::string_view path) {
    return std::string(path.empty() ? std::string_view("<memory>") : path);
}

/// The fault "<file>:<line>: <message>" of one line; `currentFile` serves a line that has no origin of its
/// own.
[[nodiscard]] inline DiagnosticError lineFault(const SourceLine& line, std::string_view currentFile,
                                               std::string_view message) {
    const std::string_view origin = line.originPath;
    return DiagnosticError(shownPath(origin.empty() ? currentFile : origin) + ":" +
                           std::to_string(line.lineNumber) + ": " + std::string(message));
}

/// The fault of a directive that stands in no task; `number` counts from 1.
[[nodiscard]] inline DiagnosticError misplacedDirective(std::string_view path, std::size_t number) {
    return DiagnosticError(shownPath(path) + ":" + std::to_string(number) +
                           ": task directive appears outside a task block");
}

} // namespace morquill::taskdsl
