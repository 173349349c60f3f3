#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// Takes a `@plot` or `@derive` block (`keyword`) off the lines: the head at `index`, the lines up to its
/// "@end", each with `[key]` substitution from `values`. Leaves `index` on the "@end" line. Throws
/// `DiagnosticError` when the block is not closed, holds another of its kind, or does not begin at `index`.
[[nodiscard]] CapturedBlock captureBlock(std::string_view keyword, const std::vector<SourceLine>& lines,
                                         std::size_t& index, const ValueMap& values);

} // namespace morquill::taskdsl
