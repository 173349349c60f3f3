#include "support/byte_set.h"

#include "support/text.h"

#include <gtest/gtest.h>

namespace morquill {
namespace {

TEST(ByteSet, HoldsTheBytesOfAText) {
    constexpr ByteSet set(std::string_view("a\0\xff", 3));
    EXPECT_TRUE(set.contains('a'));
    EXPECT_TRUE(set.contains('\0'));
    EXPECT_TRUE(set.contains('\xff'));
    EXPECT_FALSE(set.contains('b'));
    EXPECT_TRUE(set.meets("xxa"));
    EXPECT_FALSE(set.meets("xx"));
    EXPECT_FALSE(set.meets(""));
}

TEST(ByteSet, HoldsTheBytesThatPassATest) {
    constexpr ByteSet digits([](char c) { return isDigit(c); });
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(digits.contains(static_cast<char>(byte)), isDigit(static_cast<char>(byte))) << byte;
    }
}

} // namespace
} // namespace morquill
