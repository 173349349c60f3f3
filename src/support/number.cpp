#include "support/number.h"

#include "support/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

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

std::optional<std::size_t> readMenuIndex(std::string_view answer, std::size_t count, MenuSign sign) {
    answer = trim(answer);
    if (sign == MenuSign::plus && answer.starts_with('+')) {
        answer.remove_prefix(1);
    }
    const auto number = readPositiveInt(answer);
    if (!number || static_cast<std::size_t>(*number) > count) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(*number) - 1;
}

std::optional<double> readDouble(std::string_view text) {
    const std::string_view trimmed = trim(text);
    if (trimmed.empty()) {
        return std::nullopt;
    }
    // Plain decimal numbers, which nearly all are, need neither a copy nor a locale.
    double plain = 0;
    const char* const textEnd = trimmed.data() + trimmed.size();
    if (const auto read = std::from_chars(trimmed.data(), textEnd, plain);
        isDigit(trimmed.front()) && read.ptr == textEnd && read.ec == std::errc{}) {
        return plain;
    }
    const std::string word(trimmed);
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
    // Small integers, which most numbers are, have one form whatever the digits; -0 is none of them.
    if (digits >= 15 && std::abs(value) < 1e15 && value == std::trunc(value) && !std::signbit(value)) {
        const auto end = std::to_chars(buffer.begin(), buffer.end(), static_cast<std::int64_t>(value));
        return {buffer.begin(), end.ptr};
    }
    const auto end = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::general, digits);
    return {buffer.begin(), end.ptr};
}

} // namespace morquill
