#pragma once

#include <optional>
#include <string>

namespace morquill::project {

/// The project template that a task file leads to when it is nothing but the include stub in place of a link
/// that cannot be made; nothing for any other text. `path` is the file that holds the text.
[[nodiscard]] std::optional<std::string> stubTemplate(const std::string& text, const std::string& path);

} // namespace morquill::project
