#pragma once

#include <string_view>

namespace morquill::taskdsl {

/// The geometry slot that is meant where none is named.
inline constexpr std::string_view mainSlot = "main";

} // namespace morquill::taskdsl
