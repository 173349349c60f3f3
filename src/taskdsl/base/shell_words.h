#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Words as a shell splits them, and how a word is written so that it comes back.
namespace morquill::taskdsl {

/// Splits at white space like a shell: single quotes take everything literally, double quotes group, and a
/// backslash before a quote, a backslash or white space protects it. An empty pair of quotes is an empty
/// word. An unclosed quote runs to the end, a last backslash is literal.
[[nodiscard]] std::vector<std::string> splitShellWords(std::string_view text);

/// The text as one word: bare when it is not empty and holds no white space, quote, `#` or backslash, else
/// between double quotes.
[[nodiscard]] std::string quoteShellWord(std::string_view text);

/// The text between double quotes, whatever it holds; double quote and backslash are escaped.
[[nodiscard]] std::string quoteForcedShellWord(std::string_view text);

} // namespace morquill::taskdsl
