#include "support/json.h"

#include "support/byte_set.h"

namespace morquill {

namespace {

constexpr ByteSet escapedBytes([](char c) { return c == '"' || c == '\\' || (c >= '\0' && c < ' '); });

void appendEscaped(std::string& out, char c) {
    static constexpr char hex[] = "0123456789abcdef";
    switch (c) {
    case '"':
        out += "\\\"";
        break;
    case '\\':
        out += "\\\\";
        break;
    case '\b':
        out += "\\b";
        break;
    case '\f':
        out += "\\f";
        break;
    case '\n':
        out += "\\n";
        break;
    case '\r':
        out += "\\r";
        break;
    case '\t':
        out += "\\t";
        break;
    default:
        const auto byte = static_cast<unsigned char>(c);
        out += "\\u00";
        out += hex[byte >> 4U];
        out += hex[byte & 0xFU];
    }
}

/// Appends the inside of a JSON string; what needs no escape goes over in one piece.
void appendInside(std::string& out, std::string_view text) {
    std::size_t plain = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (escapedBytes.contains(text[i])) {
            out += text.substr(plain, i - plain);
            appendEscaped(out, text[i]);
            plain = i + 1;
        }
    }
    out += text.substr(plain);
}

} // namespace

std::string jsonEscape(std::string_view text) {
    std::string result;
    appendInside(result, text);
    return result;
}

std::string jsonString(std::string_view text) {
    std::string result;
    appendJsonString(result, text);
    return result;
}

void appendJsonString(std::string& out, std::string_view text) {
    out += '"';
    appendInside(out, text);
    out += '"';
}

} // namespace morquill
