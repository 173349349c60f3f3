#pragma once

#include <optional>
#include <string_view>

namespace morquill::taskdsl {

/// A `@foreach` line taken apart. The texts point into the line.
struct ForeachHeader {
    bool isOptional = false;                ///< `@foreach?`: no error when the collection is missing
    std::string_view name;                  ///< of the collection; with a source, of the items
    std::optional<std::string_view> source; ///< of the form `@foreach <name> in <source>`
};

/// Reads a cleaned line `@foreach[?] <name> in <source>` or `@foreach[?] <name>`; nothing for any other line.
[[nodiscard]] std::optional<ForeachHeader> parseForeachHeader(std::string_view text) noexcept;

} // namespace morquill::taskdsl
