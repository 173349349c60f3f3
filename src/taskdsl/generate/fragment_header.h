#pragma once

#include "taskdsl/base/line_blocks.h"
#include "taskdsl/generate/fragment.h"

#include <cstddef>
#include <vector>

namespace morquill::taskdsl {

/// Whether a header must name its fragment: in a library, where includes ask for the name.
enum class FragmentNaming { required, optional };

/// Reads `&FRAGMENT <kind> [<name>][(<parameters>)]` from the line at `start`, over several lines while a
/// parenthesis is open. The definition has no body yet. Throws `DiagnosticError` when the header does not
/// follow that form or lacks a required name.
[[nodiscard]] TakenLines<FragmentDefinition> parseFragmentHeader(const std::vector<SourceLine>& lines,
                                                                 std::size_t start, const SharedText& path,
                                                                 FragmentNaming naming);

} // namespace morquill::taskdsl
