#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers in text, always in the C locale.
namespace morquill {

/// Reads a signed 32-bit integer as C's `strtol` does with base 10: leading white space and one sign are
/// allowed, trailing text is ignored. Returns nothing when there is no digit or the value does not fit.
[[nodiscard]] std::optional<std::int32_t> readLeadingInt(std::string_view text);

/// Reads a decimal integer from 1 to 2147483647 that consists of digits only; nothing for any other text.
[[nodiscard]] std::optional<std::int32_t> readPositiveInt(std::string_view digits);

/// Whether a plus sign may precede the number of a menu entry.
enum class MenuSign : std::uint8_t { none, plus };

/// Returns the index, from 0, of the menu entry whose number, from 1 to
/// `count`, is the whole trimmed answer; nothing for any other text.
[[nodiscard]] std::optional<std::size_t> readMenuIndex(std::string_view answer, std::size_t count,
                                                       MenuSign sign);

/// Reads a floating-point number as `strtod` does (exponents, hexadecimal, "inf", "nan") from the whole
/// trimmed text; nothing when text is left over or there is none. The value may be infinite or NaN.
[[nodiscard]] std::optional<double> readDouble(std::string_view text);

/// Writes a double with `digits` significant digits, as the C format `%.<digits>g` does.
[[nodiscard]] std::string formatSignificant(double value, int digits);

/// The same text, and whether it reads as the very number; no number reads as no number.
struct PrintedNumber {
    std::string text;
    bool readsBack = false;
};
[[nodiscard]] PrintedNumber printSignificant(double value, int digits);

} // namespace morquill
