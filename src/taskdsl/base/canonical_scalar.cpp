#include "taskdsl/base/canonical_scalar.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>

namespace morquill::taskdsl {

namespace {

bool standsBare(std::string_view text) noexcept {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
        return isSpace(c) || c == '"' || c == '#' || c == ',' || c == ':';
    });
}

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        switch (c) {
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '"':
        case '\\':
            out += '\\';
            out += c;
            break;
        default:
            out += c;
        }
    }
    out += '"';
}

bool hasPairOfSingleQuotes(std::string_view text) noexcept {
    return text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
}

/// Bytes that YAML refuses in a bare text.
bool isControl(char c) noexcept {
    return (c >= '\0' && c < ' ') || c == '\x7f';
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

std::string quoteUnquotedScalar(std::string_view text) {
    return hasPairOfSingleQuotes(text) ? quoteForcedScalar(text) : quoteCanonicalScalar(text);
}

std::string quoteSettingScalar(std::string_view text) {
    return isMoreThanTextInYaml(text) ? quoteForcedScalar(text) : quoteCanonicalScalar(text);
}

void appendCanonicalScalar(std::string& out, std::string_view text) {
    if (standsBare(text)) {
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

std::string formatCanonicalNumber(double value) {
    return formatSignificant(value, 12);
}

} // namespace morquill::taskdsl
