#include "support/cursor.h"

#include <gtest/gtest.h>

namespace morquill {
namespace {

TEST(Cursor, TakesBytesAndWords) {
    Cursor cursor("  key = value,");
    EXPECT_FALSE(cursor.take('k'));
    EXPECT_EQ(cursor.skipSpace().place(), 2U);
    EXPECT_EQ(cursor.takeWhile(isLetter), "key");
    EXPECT_EQ(cursor.takeWhile(isLetter), "");
    EXPECT_TRUE(cursor.skipSpace().take('='));
    EXPECT_EQ(cursor.rest(), " value,");
    EXPECT_TRUE(cursor.skipSpace().isAt('v'));
    EXPECT_FALSE(cursor.take("values"));
    EXPECT_TRUE(cursor.take("val"));
    EXPECT_EQ(cursor.takeTo(12), "u");
    EXPECT_EQ(cursor.takeWord(), "e,");
    EXPECT_TRUE(cursor.atEnd());
}

TEST(Cursor, TakesNothingAtTheEnd) {
    Cursor cursor("ab", 2);
    EXPECT_TRUE(cursor.atEnd());
    EXPECT_EQ(cursor.rest(), "");
    EXPECT_EQ(cursor.skipSpace().place(), 2U);
    EXPECT_FALSE(cursor.isAt('b'));
    EXPECT_FALSE(cursor.take('\0'));
    EXPECT_FALSE(cursor.take("a"));
    EXPECT_EQ(cursor.takeWord(), "");
}

TEST(Cursor, AWordEndsAtAnyWhiteSpace) {
    for (const char space : {' ', '\t', '\n', '\v', '\f', '\r'}) {
        const std::string text = std::string("a\xA0") + space + "b";
        EXPECT_EQ(Cursor(text).takeWord(), "a\xA0");
    }
}

} // namespace
} // namespace morquill
