#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

using ::testing::ElementsAre;

TEST(Text, TrimTakesOnlyBlankTabReturnAndFeed) {
    EXPECT_EQ(trim(" \t\r\n a b \n"), "a b");
    EXPECT_EQ(trim("\v a"), "\v a");
    EXPECT_EQ(trim("\x85 a\xA0"), "\x85 a\xA0");
    EXPECT_EQ(trim(" \t"), "");
    EXPECT_EQ(trimLeft("  a "), "a ");
}

TEST(Text, CharacterClassesGrowByOneByte) {
    const auto membersOf = [](auto isMember) {
        std::string members;
        for (int byte = 0; byte < 256; ++byte) {
            const auto c = static_cast<char>(byte);
            members.append(isMember(c) && !isLetter(c) && !isDigit(c) ? 1 : 0, c);
        }
        return members;
    };
    EXPECT_EQ(membersOf(isWordChar), "_");
    EXPECT_EQ(membersOf(isWordStart), "_");
    EXPECT_EQ(membersOf(isNameChar), "-_");
    EXPECT_EQ(membersOf(isDottedWordChar), "._");
    EXPECT_EQ(membersOf(isKeyChar), "-._");
    EXPECT_TRUE(isWordChar('0') && isWordChar('z') && isWordStart('Z') && !isWordStart('9'));
}

TEST(Text, ControlCharactersAreAsciiOnly) {
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(isControl(static_cast<char>(byte)), byte < 32 || byte == 127) << byte;
    }
}

TEST(Text, SkippingSpaceStopsAtTheEnd) {
    EXPECT_EQ(skipSpace(" \t\v\f\r\na b"), 6U);
    EXPECT_EQ(skipSpace("a b", 1), 2U);
    EXPECT_EQ(skipSpace("a ", 1), 2U);
    EXPECT_EQ(skipSpace("\xA0"), 0U);
}

TEST(Text, LoweringIsAsciiOnly) {
    EXPECT_EQ(toLower("AZ\xC4z"), "az\xC4z");
    EXPECT_TRUE(equalsNoCase("Gaussian", "gAUSSIAN"));
    EXPECT_FALSE(equalsNoCase("a", "ab"));
    EXPECT_TRUE(containsNoCase("completed AllOthers", "allothers"));
    EXPECT_FALSE(containsNoCase("completed allother", "allothers"));
}

TEST(Text, TrailingSpaceIsAllWhiteSpaceAtTheEnd) {
    EXPECT_EQ(dropTrailingSpace(" a b \t\v\f\r\n"), " a b");
    EXPECT_EQ(dropTrailingSpace("a\xA0"), "a\xA0");
    EXPECT_EQ(dropTrailingSpace(" \v"), "");
}

TEST(Text, OneOfSomeWordsIsAWholeWord) {
    EXPECT_TRUE(isOneOf("b", {"a", "b"}));
    EXPECT_FALSE(isOneOf("B", {"a", "b"}));
    EXPECT_FALSE(isOneOf("", {"a", "b"}));
    EXPECT_FALSE(isOneOf("ab", {"a", "b"}));
    EXPECT_TRUE(isOneOfNoCase("Off", {"no", "off"}));
    EXPECT_FALSE(isOneOfNoCase("of", {"no", "off"}));
}

TEST(Text, SingleQuotesStandAroundAnyText) {
    EXPECT_EQ(singleQuoted("a b"), "'a b'");
    EXPECT_EQ(singleQuoted(""), "''");
    EXPECT_EQ(singleQuoted("it's"), "'it's'");
    EXPECT_EQ(singleQuoted(std::string_view("a\0b", 3)), std::string("'a\0b'", 5));
}

TEST(Text, SplitOnKeepsEmptyFields) {
    EXPECT_THAT(splitOn("a  b", ' '), ElementsAre("a", "", "b"));
    EXPECT_THAT(splitOn("", ' '), ElementsAre(""));
    EXPECT_THAT(splitOn("a,", ','), ElementsAre("a", ""));
}

TEST(Text, SplitTrimmedDropsEmptyFields) {
    EXPECT_THAT(splitTrimmed(" a ,, b,", ','), ElementsAre("a", "b"));
    EXPECT_THAT(splitTrimmed(",", ','), ElementsAre());
}

TEST(Text, SplitBlankTakesRunsOfWhiteSpace) {
    EXPECT_THAT(splitBlank("  a\t\vb  c "), ElementsAre("a", "b", "c"));
    EXPECT_THAT(splitBlank(" \n"), ElementsAre());
}

TEST(Text, JoinPutsTheSeparatorBetweenParts) {
    EXPECT_EQ(join({"a", "", "b"}, ", "), "a, , b");
    EXPECT_EQ(join({}, ", "), "");
}

TEST(Text, ReplaceAllDoesNotScanWhatItPutIn) {
    EXPECT_EQ(replaceAll("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replaceAll("abab", "ab", ""), "");
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

TEST(Text, ShellQuoteProtectsSingleQuotes) {
    EXPECT_EQ(shellQuote("it's $HOME"), R"('it'\''s $HOME')");
    EXPECT_EQ(shellQuote(""), "''");
}

TEST(Text, SplitLinesNeedsNoFinalFeedAndMakesNoEmptyLastLine) {
    EXPECT_THAT(splitLines("a\n\nb\r\n"), ElementsAre("a", "", "b\r"));
    EXPECT_THAT(splitLines("a"), ElementsAre("a"));
    EXPECT_THAT(splitLines(""), ElementsAre());
    EXPECT_THAT(splitLines("\n"), ElementsAre(""));
}

TEST(Text, OneLineShowsTheEndsOfLines) {
    EXPECT_EQ(oneLine("a\nb\r\n"), "a\\nb\\r\\n");
    EXPECT_EQ(oneLine("\\n\t"), "\\n\t");
    EXPECT_EQ(oneLine(""), "");
}

TEST(Text, AWildcardIsAnyOfThreeCharacters) {
    for (const char* pattern : {"opt*", "?", "a[bc]", "["}) {
        EXPECT_TRUE(hasWildcard(pattern)) << pattern;
    }
    for (const char* name : {"", "opt", "a]", "\\", "{a,b}", "~"}) {
        EXPECT_FALSE(hasWildcard(name)) << name;
    }
}

} // namespace
} // namespace morquill
