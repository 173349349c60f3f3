#pragma once

#include <cstdint>
#include <string_view>

namespace morquill::taskdsl {

/// What a fragment may hold; also the context of an `&INCLUDE` line.
enum class FragmentKind : std::int32_t {
    unknown = 0,
    document,
    task_body,
    process,
    preprocess,
    control,
    mod,
    when,
    meta,
    param,
    args,
    batch,
    text
};

/// The context of an `&INCLUDE`: `document` at file level.
using FragmentExpansionScope = FragmentKind;

/// The name of a kind; "unknown" for a value outside the enumeration.
[[nodiscard]] std::string_view fragmentKindName(FragmentKind kind) noexcept;
/// Reads a spelling (trimmed, any case, `-` as `_`); `unknown` for any other text.
[[nodiscard]] FragmentKind parseFragmentKind(std::string_view text);
/// True when a fragment of that kind may be included in that scope.
[[nodiscard]] bool kindFits(FragmentKind kind, FragmentExpansionScope scope) noexcept;

} // namespace morquill::taskdsl
