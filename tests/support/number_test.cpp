#include "support/number.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace morquill {
namespace {

TEST(Number, LeadingIntIgnoresTrailingText) {
    EXPECT_EQ(readLeadingInt(" +8x"), 8);
    EXPECT_EQ(readLeadingInt("-4"), -4);
    EXPECT_EQ(readLeadingInt("2147483647"), 2147483647);
    EXPECT_EQ(readLeadingInt("-2147483648"), -2147483648LL);
}

TEST(Number, LeadingIntRefusesTextWithoutDigitsAndOverflow) {
    for (const char* text :
         {"", " ", "x8", "-", "+-1", "2147483648", "-2147483649", "99999999999999999999999"}) {
        EXPECT_EQ(readLeadingInt(text), std::nullopt) << text;
    }
}

TEST(Number, PositiveIntIsDigitsOnly) {
    EXPECT_EQ(readPositiveInt("007"), 7);
    for (const char* text : {"", "0", "+1", "1 ", "1x", "2147483648"}) {
        EXPECT_EQ(readPositiveInt(text), std::nullopt) << text;
    }
}

TEST(Number, AMenuIndexIsAWholeNumberWithinTheMenu) {
    EXPECT_EQ(readMenuIndex("1", 3, MenuSign::none), 0U);
    EXPECT_EQ(readMenuIndex(" 03\r\n", 3, MenuSign::none), 2U);
    EXPECT_EQ(readMenuIndex("+2", 3, MenuSign::plus), 1U);
    EXPECT_EQ(readMenuIndex("+2", 3, MenuSign::none), std::nullopt);
    for (const char* text : {"", "0", "4", "-1", "+", "++1", "+-1", "1 2", "1x", "x", "1.0", "2147483648",
                             "99999999999999999999"}) {
        EXPECT_EQ(readMenuIndex(text, 3, MenuSign::plus), std::nullopt) << text;
    }
    EXPECT_EQ(readMenuIndex("1", 0, MenuSign::plus), std::nullopt);
}

TEST(Number, DoubleTakesTheWholeTrimmedText) {
    EXPECT_EQ(readDouble(" 1.5e3 "), 1500.0);
    EXPECT_EQ(readDouble("0x10"), 16.0);
    EXPECT_TRUE(std::isinf(*readDouble("inf")));
    EXPECT_EQ(readDouble("1.5x"), std::nullopt);
    EXPECT_EQ(readDouble(""), std::nullopt);
    EXPECT_EQ(readDouble(std::string_view("1\0", 2)), std::nullopt);
}

TEST(Number, SignificantDigits) {
    EXPECT_EQ(formatSignificant(0.1, 12), "0.1");
    EXPECT_EQ(formatSignificant(298.15, 12), "298.15");
    EXPECT_EQ(formatSignificant(1e20, 12), "1e+20");
    EXPECT_EQ(formatSignificant(1.0 / 3, 15), "0.333333333333333");
    EXPECT_EQ(formatSignificant(627.5095, 15), "627.5095");
    EXPECT_EQ(formatSignificant(0.1, 17), "0.10000000000000001");
    EXPECT_EQ(formatSignificant(100000, 3), "1e+05");
    EXPECT_EQ(formatSignificant(5e-324, 15), "4.94065645841247e-324");
    EXPECT_EQ(formatSignificant(-0.0, 15), "-0");
}

/// Numbers of all sizes and of one to seventeen digits, with both signs.
std::vector<double> manyNumbers() {
    std::vector<double> numbers{0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, INFINITY};
    std::mt19937_64 random(1);
    for (int exponent = -320; exponent <= 305; ++exponent) {
        for (std::uint64_t scale = 10; scale <= 100'000'000'000'000'000; scale *= 10) {
            const std::string text = std::to_string(random() % scale) + "e" + std::to_string(exponent - 8);
            numbers.push_back(std::strtod(text.c_str(), nullptr));
        }
    }
    std::vector<double> both = numbers;
    for (const double number : numbers) {
        both.push_back(-number);
    }
    return both;
}

TEST(Number, SignificantDigitsAreThoseOfTheCLibrary) {
    for (const double number : manyNumbers()) {
        for (const int digits : {3, 12, 15, 17}) {
            std::array<char, 64> text{};
            std::snprintf(text.data(), text.size(), "%.*g", digits, number);
            ASSERT_EQ(formatSignificant(number, digits), text.data());
            ASSERT_EQ(printSignificant(number, digits).readsBack, std::strtod(text.data(), nullptr) == number)
                << text.data() << " of " << digits << " digits";
        }
    }
}

TEST(Number, NoNumberReadsAsNoNumber) {
    EXPECT_TRUE(printSignificant(NAN, 15).readsBack);
}

} // namespace
} // namespace morquill
