#pragma once

#include "taskdsl/plot/enumerations.h"

#include <cstdint>

namespace morquill::taskdsl::plot {

/// A set of plot kinds, one bit each, for the tables that say what holds for which kind.
using KindSet = std::uint32_t;

template <class... Kinds>
[[nodiscard]] constexpr KindSet kinds(Kinds... kind) noexcept {
    return ((KindSet{1} << static_cast<unsigned>(kind)) | ...);
}

template <class... Kinds>
[[nodiscard]] constexpr KindSet allBut(Kinds... kind) noexcept {
    return ~kinds(kind...);
}

inline constexpr KindSet everyKind = ~KindSet{0};

[[nodiscard]] constexpr bool contains(KindSet set, PlotKind kind) noexcept {
    return (set & kinds(kind)) != 0;
}

} // namespace morquill::taskdsl::plot
