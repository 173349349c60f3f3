#include "taskdsl/base/escape.h"

#include <array>
#include <cstddef>

namespace morquill::taskdsl {

namespace {

struct Escape {
    char byte;
    char letter; ///< after the backslash
};
constexpr std::array<Escape, 5> escapes{{{'\t', 't'}, {'\n', 'n'}, {'\r', 'r'}, {'"', '"'}, {'\\', '\\'}}};

/// The letter of each byte that is escaped; NUL for the others.
constexpr auto letters = [] {
    std::array<char, 256> table{};
    for (const auto& escape : escapes) {
        table[static_cast<unsigned char>(escape.byte)] = escape.letter;
    }
    return table;
}();

} // namespace

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const char letter = letters[static_cast<unsigned char>(text[i])]; letter != '\0') {
            out += text.substr(copied, i - copied);
            out += '\\';
            out += letter;
            copied = i + 1;
        }
    }
    out += text.substr(copied);
    out += '"';
}

std::optional<char> escapedByte(char letter) noexcept {
    for (const auto& escape : escapes) {
        if (escape.letter == letter) {
            return escape.byte;
        }
    }
    return std::nullopt;
}

} // namespace morquill::taskdsl
