#pragma once

#include <string>

namespace morquill {

/// Returns the user's reference of all properties in Markdown: docs/properties.md, byte for byte.
[[nodiscard]] std::string renderPropertyDocument();

} // namespace morquill
