#pragma once

#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// `@foreach ... @end`: lines that are repeated for every item of a collection or a series.
namespace morquill::taskdsl {

/// The named collections of a prelude; an item is a map of its keys.
using Collections = std::map<std::string, std::vector<ValueMap>, std::less<>>;

/// A `@foreach` line taken apart.
struct ForeachHeader {
    bool valid = false;
    bool optional = false;  ///< `@foreach?`: no error when the collection is missing
    bool hasSource = false; ///< the form `@foreach <name> in <source>`
    std::string name;
    std::string source;
};

/// Reads a cleaned line: `@foreach[?] <name> in <source>` or `@foreach[?] <name>`; any other line is not
/// valid.
[[nodiscard]] ForeachHeader parseForeachHeader(std::string_view text);

/// Repeats the lines of every `@foreach` block with `<name>.<key>` put in for its items, and puts `values`
/// into all other lines. Throws `DiagnosticError` for an open block, a stray "@end", an unknown collection or
/// source.
[[nodiscard]] std::vector<SourceLine> expandForeach(std::vector<SourceLine> lines,
                                                    const Collections& collections, const ValueMap& values);

} // namespace morquill::taskdsl
