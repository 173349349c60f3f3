#pragma once

#include <string>
#include <string_view>

namespace morquill {

/// Returns the inside of a JSON string: double quote, backslash, backspace, form feed, line feed, carriage
/// return and tab as two-letter escapes, other bytes below 0x20 as \u00XX, all other bytes unchanged.
[[nodiscard]] std::string jsonEscape(std::string_view text);

/// Returns `text` escaped and in double quotes.
[[nodiscard]] std::string jsonString(std::string_view text);

/// Appends `jsonString(text)` to a text.
void appendJsonString(std::string& out, std::string_view text);

} // namespace morquill
