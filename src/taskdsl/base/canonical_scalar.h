#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How a value is written in canonical form, and how it is read.
namespace morquill::taskdsl {

/// A text without white space, `"`, `#`, `,` and `:` is returned bare; any other, the empty one included,
/// between double quotes with tab, line feed, carriage return, double quote and backslash escaped.
[[nodiscard]] std::string quoteCanonicalScalar(std::string_view text);

/// The text between double quotes, whatever it holds.
[[nodiscard]] std::string quoteForcedScalar(std::string_view text);

/// `quoteCanonicalScalar` for a value whose reader knows single quotes and takes off a pair around the whole
/// value: such a value is quoted although the rule alone would leave it bare.
[[nodiscard]] std::string quoteUnquotedScalar(std::string_view text);

/// The same for a setting, which the YAML reader sees: what it would take for more than a plain text is
/// quoted.
[[nodiscard]] std::string quoteSettingScalar(std::string_view text);

/// Appends `quoteCanonicalScalar(text)`.
void appendCanonicalScalar(std::string& out, std::string_view text);
/// Appends `quoteUnquotedScalar(text)`.
void appendUnquotedScalar(std::string& out, std::string_view text);

/// The quoted values with ", " between them, without brackets. A value with a single quote is quoted, as the
/// list's reader does not split inside single quotes.
[[nodiscard]] std::string joinCanonicalList(const std::vector<std::string>& values);

/// The values of a list, split at commas outside quotes, each read by `readScalar`; empty ones are dropped.
[[nodiscard]] std::vector<std::string> splitValueList(std::string_view text);

/// The decoded value of a text that is exactly one double-quoted scalar as `quoteForcedScalar` writes it,
/// with every inner quote escaped and no escapes but \" \\ \t \n \r; nothing for any other text.
[[nodiscard]] std::optional<std::string> decodeCanonicalScalar(std::string_view text);

/// The value of a scalar: the trimmed text decoded where it is one that the canonical writer quotes, else
/// without one surrounding pair of quotes.
[[nodiscard]] std::string readScalar(std::string_view text);

/// A number as the C format `%.12g` writes it.
[[nodiscard]] std::string formatCanonicalNumber(double value);

} // namespace morquill::taskdsl
