#include "support/number.h"

#include "support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <utility>

namespace morquill {

namespace {

constexpr std::int64_t maxInt32 = 2147483647;

/// As many digits survive the way from a text into a double and back.
constexpr int safeDigits = std::numeric_limits<double>::digits10;

/// True for small integers, which most numbers are; -0 is none of them.
bool isSmallInteger(double value) noexcept {
    return std::abs(value) < 1e15 && value == std::trunc(value) && !std::signbit(value);
}

/// A number with no more digits than tell it from any other.
class ShortestForm {
  public:
    explicit ShortestForm(double value) noexcept {
        const auto end = std::to_chars(text_.begin(), text_.end(), value, std::chars_format::scientific).ptr;
        const auto mark = std::find(text_.begin(), end, 'e');
        size_ = static_cast<std::size_t>(end - text_.begin());
        count_ = static_cast<std::size_t>(std::copy_if(text_.begin(), mark, digits_.begin(), isDigit) -
                                          digits_.begin());
        const char* const sign = mark + 1; // from_chars takes no plus
        (void)std::from_chars(sign + (*sign == '+' ? 1 : 0), end, exponent_);
    }

    [[nodiscard]] bool fits(int digits) const noexcept { return count_ <= static_cast<std::size_t>(digits); }

    /// The number as `%.<digits>g` prints it; the digits must fit.
    [[nodiscard]] std::string print(int digits) const {
        if (exponent_ < -4 || exponent_ >= digits) {
            return {text_.data(), size_};
        }
        const std::string_view all(digits_.data(), count_);
        std::string text(text_.front() == '-' ? "-" : "");
        if (exponent_ < 0) {
            return text.append("0.").append(static_cast<std::size_t>(-exponent_ - 1), '0').append(all);
        }
        const auto whole = static_cast<std::size_t>(exponent_) + 1; // digits before the point
        if (count_ <= whole) {
            return text.append(all).append(whole - count_, '0');
        }
        return text.append(all.substr(0, whole)).append(".").append(all.substr(whole));
    }

  private:
    std::array<char, 32> text_{}; ///< in scientific notation
    std::size_t size_ = 0;
    std::array<char, 20> digits_{};
    std::size_t count_ = 0;
    int exponent_ = 0;
};

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

PrintedNumber printSignificant(double value, int digits) {
    std::array<char, 64> buffer{};
    // Small integers have one form whatever the digits.
    if (digits >= safeDigits && isSmallInteger(value)) {
        const auto end = std::to_chars(buffer.begin(), buffer.end(), static_cast<std::int64_t>(value));
        return {{buffer.begin(), end.ptr}, true};
    }
    // A number that somebody wrote has few digits: the shortest form has them all and is found faster.
    const bool isSafe = std::isnormal(value) && digits <= safeDigits;
    if (isSafe) {
        if (const ShortestForm shortest(value); shortest.fits(digits)) {
            return {shortest.print(digits), true};
        }
    }
    const auto end = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::general, digits);
    std::string text(buffer.begin(), end.ptr);
    const bool readsBack = !isSafe && (!std::isfinite(value) || readDouble(text) == value);
    return {std::move(text), readsBack};
}

std::string formatSignificant(double value, int digits) {
    return printSignificant(value, digits).text;
}

} // namespace morquill
