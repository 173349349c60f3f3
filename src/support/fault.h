#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace morquill {

/// True for what the standard library throws when the memory runs out or a size cannot be had at all.
[[nodiscard]] bool isOutOfMemory(const std::exception& fault) noexcept;

/// What a fault says to the user. A lack of memory says nothing by itself: it becomes "out of memory: <path>"
/// with the file that was worked on, "out of memory" without one.
[[nodiscard]] std::string faultText(const std::exception& fault, std::string_view path);

} // namespace morquill
