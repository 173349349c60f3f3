#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How a value is written in canonical form.
namespace morquill::views {

/// A text that holds no white space and none of `"`, `#`, `,`, `:` stands bare; any other text, the empty one
/// included, stands between double quotes with tab, line feed, carriage return, double quote and backslash
/// escaped.
[[nodiscard]] std::string quoteCanonicalScalar(std::string_view text);

/// Appends `quoteCanonicalScalar(text)`.
void appendCanonicalScalar(std::string& out, std::string_view text);

/// The quoted values with ", " between them, without brackets.
[[nodiscard]] std::string joinCanonicalList(const std::vector<std::string>& values);

/// A number as the C format `%.12g` writes it.
[[nodiscard]] std::string formatCanonicalNumber(double value);

} // namespace morquill::views
