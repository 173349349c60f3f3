#include "support/json.h"

namespace morquill {

std::string jsonEscape(std::string_view text) {
    static constexpr char hex[] = "0123456789abcdef";
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '"':
            result += "\\\"";
            break;
        case '\\':
            result += "\\\\";
            break;
        case '\b':
            result += "\\b";
            break;
        case '\f':
            result += "\\f";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            if (const auto byte = static_cast<unsigned char>(c); byte < 0x20) {
                result += "\\u00";
                result += hex[byte >> 4U];
                result += hex[byte & 0xFU];
            } else {
                result += c;
            }
        }
    }
    return result;
}

std::string jsonString(std::string_view text) {
    return '"' + jsonEscape(text) + '"';
}

} // namespace morquill
