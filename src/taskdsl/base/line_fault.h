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

/// The fault "<file>:<line>: <message>" of one line; `currentFile` serves a line that has no origin
/// of its own.
[[nodiscard]] inline DiagnosticError lineFault(const SourceLine& line, std::string_view currentFile,
                                               std::string_view message) {
    const SharedText path = line.originPath.empty() ? SharedText(currentFile) : line.originPath;
    return DiagnosticError::namingPlace(spanOfLine(path, line.lineNumber, line.text()),
                                        shownPath(path) + ":" + std::to_string(line.lineNumber) + ": " +
                                            std::string(message));
}

/// The fault of a directive that is in no task.
[[nodiscard]] inline DiagnosticError misplacedDirective(const SourceLine& line,
                                                        std::string_view currentFile) {
    return lineFault(line, currentFile, "task directive appears outside a task block");
}

} // namespace morquill::taskdsl
