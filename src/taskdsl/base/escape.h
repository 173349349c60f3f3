#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Texts between double quotes with escapes: \t, \n, \r, \" and \\.
namespace morquill::taskdsl {

/// Appends the text between double quotes; tab, line feed, carriage return, double quote and
/// backslash are escaped.
void appendQuoted(std::string& out, std::string_view text);

/// The byte that a backslash and this letter mean; nothing when they are not an escape.
[[nodiscard]] std::optional<char> escapedByte(char letter) noexcept;

} // namespace morquill::taskdsl
