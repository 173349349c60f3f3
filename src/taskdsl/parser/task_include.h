#pragma once

#include "taskdsl/generate/parse_context.h"
#include "taskdsl/task/task_document.h"

#include <functional>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// Reads the text of an included task file with the parser that is at work; `context` is that file's own.
using IncludedTextReader = std::function<TaskDocument(std::string_view text, const std::string& path,
                                                      const ValueMap& defines, DocumentContext& context)>;

/// Reads a task file and puts what it holds into the document: its tasks, plots and derives, the settings
/// whose key is free, the files it read. Its defines and axes are not taken over. `target` is resolved from
/// the file `base`. A missing file is a warning. Throws `DiagnosticError` when the file includes itself.
void parseTaskInclude(const std::string& target, const std::string& base, TaskDocument& document,
                      DocumentContext& context, const IncludedTextReader& read);

} // namespace morquill::taskdsl
