#include "support/number.h"

#include "support/text.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace morquill {

namespace {

constexpr std::int64_t maxInt32 = 2147483647;

} // namespace

std::optional<std::int32_t> readLeadingInt(std::string_view text) {
    std::size_t i = skipSpace(text);
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    if (i == text.size() || !isDigit(text[i])) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > maxInt32 + (negative ? 1 : 0)) {
            return std::nullopt;
        }
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::optional<std::int32_t> readPositiveInt(std::string_view digits) {
    for (const char c : digits) {
        if (!isDigit(c)) {
            return std::nullopt;
        }
    }
    const auto value = readLeadingInt(digits);
    return value && *value > 0 ? value : std::nullopt;
}

std::optional<double> readDouble(std::string_view text) {
    const std::string word(trim(text));
    if (word.empty()) {
        return std::nullopt;
    }
    char* end = nullptr;
    const double value = std::strtod(word.c_str(), &end);
    // An embedded NUL ends the C string early, so the end is compared with the length of the whole word.
    if (end != word.c_str() + word.size()) {
        return std::nullopt;
    }
    return value;
}

std::string formatSignificant(double value, int digits) {
    std::array<char, 64> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, value);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

} // namespace morquill
