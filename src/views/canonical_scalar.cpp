#include "views/canonical_scalar.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>

namespace morquill::views {

namespace {

bool standsBare(std::string_view text) noexcept {
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
        return isSpace(c) || c == '"' || c == '#' || c == ',' || c == ':';
    });
}

} // namespace

void appendCanonicalScalar(std::string& out, std::string_view text) {
    if (standsBare(text)) {
        out += text;
        return;
    }
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

std::string quoteCanonicalScalar(std::string_view text) {
    std::string result;
    appendCanonicalScalar(result, text);
    return result;
}

std::string joinCanonicalList(const std::vector<std::string>& values) {
    std::string result;
    for (std::size_t i = 0; i < values.size(); ++i) {
        result += i == 0 ? "" : ", ";
        appendCanonicalScalar(result, values[i]);
    }
    return result;
}

std::string formatCanonicalNumber(double value) {
    return formatSignificant(value, 12);
}

} // namespace morquill::views
