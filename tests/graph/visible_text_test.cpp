#include "graph/visible_text.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

using namespace std::string_literals;

TEST(VisibleText, CharactersOfEveryLengthStay) {
    EXPECT_EQ(visibleText(""), "");
    EXPECT_EQ(visibleText("opt \"x\" \\ {[<&>]}"), "opt \"x\" \\ {[<&>]}");
    EXPECT_EQ(visibleText("\u00e9 \u03bb \u20ac \U0001f9ea"), "\u00e9 \u03bb \u20ac \U0001f9ea");
}

TEST(VisibleText, WhatIsNotSeenIsShownByItsBytes) {
    const std::pair<std::string, const char*> rows[] = {
        {"a\0b"s, "a\\x00b"},
        {"\t\n\r\x1b", "\\x09\\x0a\\x0d\\x1b"},
        {"\x7f\u0080\u009f\u00a0", "\\x7f\\xc2\\x80\\xc2\\x9f\u00a0"},
        {"\u2027\u2028\u202e\u202f", "\u2027\\xe2\\x80\\xa8\\xe2\\x80\\xae\u202f"},
        {"\u2065\u2066\u2069\u206a", "\u2065\\xe2\\x81\\xa6\\xe2\\x81\\xa9\u206a"},
        {"\ufffd\ufffe\uffff", "\ufffd\\xef\\xbf\\xbe\\xef\\xbf\\xbf"},
    };
    for (const auto& [text, shown] : rows) {
        EXPECT_EQ(visibleText(text), shown);
    }
}

TEST(VisibleText, BytesThatAreNoCharacterAreShownOneByOne) {
    const std::pair<const char*, const char*> rows[] = {
        {"\xff", "\\xff"},
        {"\x80z", "\\x80z"},                                   // a continuation without a beginning
        {"\xc3", "\\xc3"},                                     // a beginning at the end
        {"\xc3z", "\\xc3z"},                                   // and one that is not continued
        {"\xe2\x82z", "\\xe2\\x82z"},                          // neither is this
        {"\xc1\xbf", "\\xc1\\xbf"},                            // U+007F in two bytes
        {"\xe0\x9f\xbf", "\\xe0\\x9f\\xbf"},                   // U+07FF in three
        {"\xf0\x8f\xbf\xbf", "\\xf0\\x8f\\xbf\\xbf"},          // U+FFFF in four
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},                   // a surrogate
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},          // U+110000
        {"\xf8\x88\x80\x80\x80", "\\xf8\\x88\\x80\\x80\\x80"}, // five bytes
        {"\xf4\x8f\xbf\xbd", "\xf4\x8f\xbf\xbd"},              // U+10FFFD is one
    };
    for (const auto& [text, shown] : rows) {
        EXPECT_EQ(visibleText(text), shown);
    }
}

TEST(VisibleStart, CountsCharactersOfTheText) {
    EXPECT_EQ(visibleStart("abc", 3), "abc");
    EXPECT_EQ(visibleStart("abcd", 3), "abc...");
    EXPECT_EQ(visibleStart("\u00e9\u03bb\u20acx", 3), "\u00e9\u03bb\u20ac...");
    EXPECT_EQ(visibleStart("\n\n\n", 2), "\\x0a\\x0a...");
    EXPECT_EQ(visibleStart("a", 0), "...");
    EXPECT_EQ(visibleStart("", 0), "");
}

TEST(QuotedLabel, JoinsTheEscapedLines) {
    const auto escape = [](std::string_view line) { return "<" + std::string(line) + ">"; };
    EXPECT_EQ(quotedLabel({"a", "", "b"}, "|", escape), "\"<a>|<>|<b>\"");
    EXPECT_EQ(quotedLabel({}, "|", escape), "\"\"");
}

TEST(CharacterLength, IsThatOfTheFirstCharacter) {
    EXPECT_EQ(characterLength(""), 0U);
    EXPECT_EQ(characterLength("ab"), 1U);
    EXPECT_EQ(characterLength("\0"s), 1U);
    EXPECT_EQ(characterLength("\u00e9b"), 2U);
    EXPECT_EQ(characterLength("\u20acb"), 3U);
    EXPECT_EQ(characterLength("\U0001f9eab"), 4U);
    EXPECT_EQ(characterLength("\xff"), 0U);
}

} // namespace
} // namespace morquill::graph
