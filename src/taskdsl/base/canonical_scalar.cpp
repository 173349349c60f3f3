#include "taskdsl/base/canonical_scalar.h"

#include "support/byte_set.h"
#include "support/number.h"
#include "support/text.h"
#include "taskdsl/base/escape.h"
#include "taskdsl/base/quote_rules.h"
#include "taskdsl/base/scan.h"

#include <algorithm>

namespace morquill::taskdsl {

namespace {

/// What a bare value must not hold.
constexpr ByteSet quotedBytes([](char c) {
    return isSpace(c) || c == '"' || c == '#' || c == ',' || c == ':';
});

bool isBareScalar(std::string_view text) noexcept {
    return !text.empty() && !quotedBytes.meets(text);
}

/// What a quoted value holds after a backslash only.
constexpr ByteSet escapedBytes(std::string_view("\"\\"));

bool hasPairOfSingleQuotes(std::string_view text) noexcept {
    return text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
}

/// True when YAML reads the bare text as something other than this text: an indicator at its start, a
/// null, or a control character.
bool isMoreThanTextInYaml(std::string_view text) noexcept {
    constexpr std::string_view indicators = "*&!%@`|>[]{}'";
    return text.empty() || indicators.find(text.front()) != std::string_view::npos || text == "-" ||
           text == "?" || text == "~" || text == "---" || text == "..." || equalsNoCase(text, "null") ||
           std::any_of(text.begin(), text.end(), isControl);
}

} // namespace

std::string quoteForcedScalar(std::string_view text) {
    std::string result;
    appendQuoted(result, text);
    return result;
}

void appendUnquotedScalar(std::string& out, std::string_view text) {
    if (hasPairOfSingleQuotes(text)) {
        appendQuoted(out, text);
    } else {
        appendCanonicalScalar(out, text);
    }
}

std::string quoteUnquotedScalar(std::string_view text) {
    std::string result;
    appendUnquotedScalar(result, text);
    return result;
}

std::string quoteSettingScalar(std::string_view text) {
    return isMoreThanTextInYaml(text) ? quoteForcedScalar(text) : quoteCanonicalScalar(text);
}

void appendCanonicalScalar(std::string& out, std::string_view text) {
    if (isBareScalar(text)) {
        out += text;
    } else {
        appendQuoted(out, text);
    }
}

std::string quoteCanonicalScalar(std::string_view text) {
    std::string result;
    appendCanonicalScalar(result, text);
    return result;
}

std::string joinCanonicalList(const std::vector<std::string>& values) {
    std::string result;
    for (std::size_t i = 0; i < values.size(); ++i) {
        result += i == 0 ? "" : ", ";
        if (values[i].find('\'') == std::string::npos) {
            appendCanonicalScalar(result, values[i]);
        } else {
            appendQuoted(result, values[i]);
        }
    }
    return result;
}

std::vector<std::string> splitValueList(std::string_view text) {
    std::vector<std::string> values;
    for (const auto field : splitAtTop(text, quote_rules::valueList, ',')) {
        if (auto value = readScalar(field); !value.empty()) {
            values.push_back(std::move(value));
        }
    }
    return values;
}

std::optional<std::string> decodeCanonicalScalar(std::string_view text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
        return std::nullopt;
    }
    const auto inside = text.substr(1, text.size() - 2);
    if (!escapedBytes.meets(inside)) {
        return std::string(inside);
    }
    std::string value;
    value.reserve(inside.size());
    for (std::size_t i = 0; i < inside.size(); ++i) {
        const bool escapes = inside[i] == '\\';
        if (inside[i] == '"' || (escapes && ++i == inside.size())) {
            return std::nullopt;
        }
        const auto byte = escapes ? escapedByte(inside[i]) : inside[i];
        if (!byte) {
            return std::nullopt;
        }
        value += *byte;
    }
    return value;
}

std::string readScalar(std::string_view text) {
    text = trim(text);
    if (auto value = decodeCanonicalScalar(text)) {
        return std::move(*value);
    }
    return std::string(unquote(text));
}

std::string formatCanonicalNumber(double value) {
    return formatSignificant(value, 12);
}

} // namespace morquill::taskdsl
