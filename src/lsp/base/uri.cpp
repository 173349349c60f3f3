#include "lsp/base/uri.h"

#include "support/text.h"

#include <charconv>

namespace morquill::lsp {

namespace {

/// The byte of `%XX`; nothing when two hexadecimal digits do not follow, or for NUL, which no path holds.
std::optional<char> escapedByte(std::string_view text) noexcept {
    unsigned value = 0;
    if (text.size() < 3) {
        return std::nullopt;
    }
    const auto [stop, error] = std::from_chars(text.data() + 1, text.data() + 3, value, 16);
    if (error != std::errc{} || stop != text.data() + 3 || value == 0) {
        return std::nullopt;
    }
    return static_cast<char>(value);
}

} // namespace

std::optional<std::string> pathOfUri(std::string_view uri) {
    constexpr std::string_view scheme = "file:";
    if (!equalsNoCase(uri.substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    uri.remove_prefix(scheme.size());
    if (uri.starts_with("//")) {
        uri.remove_prefix(2);
        const auto authority = uri.substr(0, uri.find('/'));
        if (!authority.empty() && !equalsNoCase(authority, "localhost")) {
            return std::nullopt;
        }
        uri.remove_prefix(authority.size());
    }
    uri = uri.substr(0, uri.find_first_of("?#"));
    if (!uri.starts_with('/')) {
        return std::nullopt;
    }
    std::string path;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] != '%') {
            path += uri[i];
            continue;
        }
        const auto byte = escapedByte(uri.substr(i));
        if (!byte) {
            return std::nullopt;
        }
        path += *byte;
        i += 2;
    }
    return path;
}

std::string uriOfPath(std::string_view path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : path) {
        if (isKeyChar(c) || c == '/' || c == '~') {
            uri += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            uri += '%';
            uri += digits[byte >> 4U];
            uri += digits[byte & 0xFU];
        }
    }
    return uri;
}

} // namespace morquill::lsp
