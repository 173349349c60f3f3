#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"

#include <map>
#include <string>
#include <vector>

/// `@foreach ... @end`: lines that are repeated for every item of a collection or a series.
namespace morquill::taskdsl {

/// The named collections of a prelude; an item is a map of its keys.
using Collections = std::map<std::string, std::vector<ValueMap>, std::less<>>;

/// Repeats the lines of every `@foreach` block with `<name>.<key>` put in for its items,
/// and puts `values` into all other lines. Throws `DiagnosticError` for an open block, a stray "@end",
/// an unknown collection or source.
[[nodiscard]] std::vector<SourceLine> expandForeach(std::vector<SourceLine> lines,
                                                    const Collections& collections, const ValueMap& values);

} // namespace morquill::taskdsl
