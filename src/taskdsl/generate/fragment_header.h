#pragma once

#include "taskdsl/generate/fragment.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// True for a `&FRAGMENT` line: the keyword followed by a blank or the end. Takes a cleaned line.
[[nodiscard]] bool isFragmentLine(std::string_view text) noexcept;

/// Reads `&FRAGMENT <kind> [<name>][(<parameters>)]` from the line at `index`, over several lines while a
/// parenthesis is open; `index` is left on the last line of the header. The definition has no body yet.
/// Throws `DiagnosticError` when the header does not follow that form or lacks a required name.
[[nodiscard]] FragmentDefinition parseFragmentHeader(const std::vector<SourceLine>& lines, std::size_t& index,
                                                     const SharedText& path, bool nameRequired);

} // namespace morquill::taskdsl
