#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

/// JSON values of the protocol, and the way in and out.
namespace morquill::lsp {

using Json = nlohmann::json;

/// The value that a text holds; nothing for a text that is no JSON, or whose brackets are nested more than
/// `maxJsonDepth` deep.
[[nodiscard]] std::optional<Json> parseJson(std::string_view text);

inline constexpr std::size_t maxJsonDepth = 200;

/// The value on one line. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string dumpJson(const Json& value);

/// The member of an object; null when the value is no object or has no such member.
[[nodiscard]] const Json& member(const Json& value, std::string_view name);

/// The text of a member; empty when it is missing or no string.
[[nodiscard]] std::string textMember(const Json& value, std::string_view name);

/// The value of a member that is an integer and fits; nothing otherwise.
[[nodiscard]] std::optional<std::int64_t> integerMember(const Json& value, std::string_view name);

/// True when the member is there and `true`.
[[nodiscard]] bool flagMember(const Json& value, std::string_view name);

} // namespace morquill::lsp
