#include "support/number.h"

#include <gtest/gtest.h>

#include <cmath>

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
}

} // namespace
} // namespace morquill
