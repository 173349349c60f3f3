#pragma once

#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/generate/name_clash.h"
#include "taskdsl/task/task_document.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// `define:` sections and the keys that they may not use.
namespace morquill::taskdsl {

/// True for a key that means a runtime placeholder of `%source`: one of the reserved names, alone,
/// followed by a dot and more, or followed by digits only.
[[nodiscard]] bool isReservedKey(std::string_view key) noexcept;

/// Throws `DiagnosticError` for a reserved define key.
void requireFreeDefineKey(std::string_view key);

/// Reads the body of a `define:` section from line `start`.
[[nodiscard]] TakenLines<ValueMap> parseDefineBlock(const std::vector<SourceLine>& lines, std::size_t start);

/// Adds defines to the document. Throws `DiagnosticError` for a reserved key.
void mergeDefines(TaskDocument& document, const ValueMap& defines, NameClash clash);

} // namespace morquill::taskdsl
