#pragma once

#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// Captures a `@plot` or `@derive` block (`keyword`) from its head through its "@end",
/// with `[key]` substitution from `values`. Throws `DiagnosticError` when the block is not closed,
/// holds another of its kind, or does not begin at `head`.
[[nodiscard]] TakenLines<CapturedBlock> captureBlock(std::string_view keyword,
                                                     const std::vector<SourceLine>& lines, std::size_t head,
                                                     const ValueMap& values);

} // namespace morquill::taskdsl
