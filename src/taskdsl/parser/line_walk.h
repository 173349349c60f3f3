#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/parse_context.h"
#include "taskdsl/task/task_document.h"

#include <functional>
#include <vector>

namespace morquill::taskdsl {

/// Reads the include on a line into the document.
using IncludeHandler = std::function<void(const IncludeDirective& include, const SourceLine& line)>;

/// Walks the expanded lines of one file into the tasks, plots and derives of the document; the defines that
/// it holds already are put into names and blocks. Throws `DiagnosticError`.
void walkLines(const std::vector<SourceLine>& lines, TaskDocument& document, ParseContext& run,
               const IncludeHandler& readInclude);

} // namespace morquill::taskdsl
