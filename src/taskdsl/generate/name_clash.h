#pragma once

#include <cstdint>

namespace morquill::taskdsl {

/// What a merge of defines, matrix axes or preludes does with a name that is there already.
enum class NameClash : std::uint8_t { keepOld, takeNew };

} // namespace morquill::taskdsl
