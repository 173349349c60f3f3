#pragma once

#include <array>
#include <string_view>

/// The files that are read with a task file when they lie beside it.
namespace morquill::taskdsl {

inline constexpr std::string_view extraValuesName = "extra.yaml"; ///< read as a prelude, first
inline constexpr std::string_view extraTasksName = "extra.mq";    ///< its tasks come before those of the file
inline constexpr std::array extraFileNames{extraValuesName, extraTasksName};

} // namespace morquill::taskdsl
