#include "taskdsl/base/substitute.h"

#include <gtest/gtest.h>

#include <string>

namespace morquill::taskdsl {
namespace {

TEST(SubstituteBrackets, ReplacesKnownKeysAndKeepsTheRest) {
    const ValueMap values{{"a", "1"}, {"b.c-d_2", "two"}, {"x", ""}};
    EXPECT_EQ(substituteBrackets("[a][b.c-d_2] [x]!", values), "1two !");
    EXPECT_EQ(substituteBrackets("[unknown] [A] [a b] [] [a", values), "[unknown] [A] [a b] [] [a");
    EXPECT_EQ(substituteBrackets("[[a]]", values), "[1]");
    EXPECT_EQ(substituteBrackets("[a[a]", values), "[a1");
}

TEST(SubstituteBrackets, DoesNotScanItsOwnResult) {
    EXPECT_EQ(substituteBrackets("[a]", {{"a", "[b]"}, {"b", "x"}}), "[b]");
    EXPECT_EQ(substituteBrackets("[[a]]", {{"a", "b"}, {"b", "x"}}), "[b]");
}

TEST(SubstituteBrackets, TellsWhetherAKeyIsThere) {
    for (const char* text : {"[a]", "x [b.c-d_2]", "[[a]", "[a[b]"}) {
        EXPECT_TRUE(holdsBracketKey(text)) << text;
    }
    for (const char* text : {"", "a", "[]", "[a", "[a b]", "a]"}) {
        EXPECT_FALSE(holdsBracketKey(text)) << text;
    }
}

TEST(SubstituteBrackets, MegabytesOfOpenBracketsAndNamesStayLinear) {
    const std::string brackets(2'000'000, '[');
    EXPECT_EQ(substituteBrackets(brackets, {{"a", "1"}}), brackets);
    const std::string name = "[" + std::string(2'000'000, 'a');
    EXPECT_EQ(substituteBrackets(name, {{"a", "1"}}), name);
}

TEST(Brackets, AreFoundOneByOne) {
    const std::string_view text = "[] [a [b.c]d[e-1]";
    const auto first = nextBracket(text, 0);
    EXPECT_EQ(first.key, "b.c");
    EXPECT_EQ(first.open, 6U);
    EXPECT_EQ(first.after, 11U);
    EXPECT_EQ(nextBracket(text, first.after).key, "e-1");
    EXPECT_EQ(nextBracket(text, text.size()).open, std::string_view::npos);
    EXPECT_EQ(bracketKeyAt(text, 6), "b.c");
    EXPECT_EQ(bracketKeyAt(text, 0), "");
    EXPECT_EQ(bracketKeyAt(text, 7), "");
    EXPECT_EQ(bracketKeyAt(text, 99), "");
    EXPECT_EQ(bracketKeyAt("[ab", 0), "");
}

} // namespace
} // namespace morquill::taskdsl
