#include "lsp/base/json.h"

#include "support/quote_walk.h"

#include <cstddef>
#include <limits>

namespace morquill::lsp {

namespace {

constexpr QuoteRule jsonText({.quotes = "\"", .opening = "[{", .closing = "]}"});

/// True when the brackets outside strings nest no deeper than the bound: a value is copied by recursion.
bool isShallow(std::string_view text) noexcept {
    QuoteWalk walk(jsonText);
    for (std::size_t at = 0; at < text.size() && walk.depth() <= maxJsonDepth;) {
        at = walk.step(text, at);
    }
    return walk.depth() <= maxJsonDepth;
}

} // namespace

std::optional<Json> parseJson(std::string_view text) {
    if (!isShallow(text)) {
        return std::nullopt;
    }
    auto value = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    return value.is_discarded() ? std::nullopt : std::optional(std::move(value));
}

std::string dumpJson(const Json& value) {
    return value.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

const Json& member(const Json& value, std::string_view name) {
    static const Json missing;
    if (!value.is_object()) {
        return missing;
    }
    const auto found = value.find(name);
    return found == value.end() ? missing : *found;
}

std::string textMember(const Json& value, std::string_view name) {
    const Json& text = member(value, name);
    return text.is_string() ? text.get<std::string>() : std::string();
}

std::optional<std::int64_t> integerMember(const Json& value, std::string_view name) {
    const Json& number = member(value, name);
    if (number.is_number_unsigned() &&
        number.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        return std::nullopt;
    }
    return number.is_number_integer() ? std::optional(number.get<std::int64_t>()) : std::nullopt;
}

bool flagMember(const Json& value, std::string_view name) {
    const Json& flag = member(value, name);
    return flag.is_boolean() && flag.get<bool>();
}

} // namespace morquill::lsp
