#include "taskdsl/base/scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

TEST(StripComment, EndsAtAHashAtTheStartOrBehindWhiteSpace) {
    EXPECT_EQ(stripComment("# all"), "");
    EXPECT_EQ(stripComment("a # b"), "a ");
    EXPECT_EQ(stripComment("a\t# b"), "a\t");
    EXPECT_EQ(stripComment("a#b"), "a#b");
}

TEST(StripComment, BalancedQuotesProtectTheHash) {
    EXPECT_EQ(stripComment("%keywords \"a # b\" # c"), "%keywords \"a # b\" ");
    EXPECT_EQ(stripComment("'a # b'"), "'a # b'");
    EXPECT_EQ(stripComment("\"it's # in\""), "\"it's # in\"");
}

TEST(StripComment, AnOddNumberOfQuotesIsNoQuoting) {
    EXPECT_EQ(stripComment("don't # b"), "don't ");
    EXPECT_EQ(stripComment("\"a\" \" # b"), "\"a\" \" ");
}

TEST(StripComment, ABackslashProtectsInsideQuotesOnly) {
    EXPECT_EQ(stripComment(R"("a \" # b" # c)"), R"("a \" # b" )");
    EXPECT_EQ(stripComment(R"(a \ # b)"), R"(a \ )");
    // Behind a backslash a quote is not counted, but outside quotes the walk sees it all the same.
    EXPECT_EQ(stripComment(R"(\" "a # b")"), R"(\" "a )");
}

TEST(Unquote, RemovesOnePairAndHasNoEscapes) {
    EXPECT_EQ(unquote(" \"a\\\"b\" "), "a\\\"b");
    EXPECT_EQ(unquote("'a'"), "a");
    EXPECT_EQ(unquote("'a\""), "'a\"");
    EXPECT_EQ(unquote("\""), "\"");
    EXPECT_EQ(unquote("\"\""), "");
}

TEST(ReadScalar, DecodesWhatTheWriterQuotes) {
    EXPECT_EQ(readScalar(R"("a \"b\" \\ \t\n\r")"), "a \"b\" \\ \t\n\r");
    EXPECT_EQ(readScalar(R"("")"), "");
}

TEST(ReadScalar, OtherTextsAreUnquotedOnly) {
    EXPECT_EQ(readScalar(R"("a\x")"), R"(a\x)");
    EXPECT_EQ(readScalar(R"("a" b "c")"), R"(a" b "c)");
    EXPECT_EQ(readScalar(R"("a\")"), R"(a\)");
    EXPECT_EQ(readScalar("'a'"), "a");
    EXPECT_EQ(readScalar(R"(a\n)"), R"(a\n)");
}

TEST(Classifiers, DirectiveAndHeader) {
    EXPECT_EQ(directiveName("%mod x"), "mod x");
    EXPECT_EQ(directiveName("mod"), "");
    EXPECT_EQ(taskHeaderName("$ opt "), "opt");
    EXPECT_EQ(taskHeaderName("$\"a b\""), "a b");
    EXPECT_EQ(taskHeaderName("$\""), "\"");
    EXPECT_EQ(taskHeaderName("$"), "");
    EXPECT_EQ(taskHeaderName("$\"\""), "");
    EXPECT_EQ(taskHeaderName("opt"), "");
}

TEST(Classifiers, MatchWordTakesAnyWhiteSpace) {
    EXPECT_TRUE(matchWord("guess\tx", "guess"));
    EXPECT_TRUE(matchWord("guess", "guess"));
    EXPECT_FALSE(matchWord("guessx", "guess"));
}

TEST(ShellWords, QuotesGroupAndVanish) {
    EXPECT_THAT(splitShellWords("  a 'b c' \"d e\"f "), ElementsAre("a", "b c", "d ef"));
    EXPECT_THAT(splitShellWords("'' \"\""), ElementsAre("", ""));
    EXPECT_THAT(splitShellWords(""), ElementsAre());
}

TEST(ShellWords, BackslashProtectsQuotesBackslashAndWhiteSpace) {
    EXPECT_THAT(splitShellWords(R"(a\ b \" \\ \n)"), ElementsAre("a b", "\"", "\\", "\\n"));
    EXPECT_THAT(splitShellWords(R"("a\"b\x")"), ElementsAre(R"(a"b\x)"));
    EXPECT_THAT(splitShellWords(R"('a\'b)"), ElementsAre("a\\b"));
}

TEST(ShellWords, UnclosedQuotesRunToTheEnd) {
    EXPECT_THAT(splitShellWords("\"a b"), ElementsAre("a b"));
    EXPECT_THAT(splitShellWords("'a b"), ElementsAre("a b"));
    EXPECT_THAT(splitShellWords("a\\"), ElementsAre("a\\"));
}

TEST(Identifiers, BeginWithALetter) {
    EXPECT_TRUE(isIdentifier("a1_-b"));
    EXPECT_FALSE(isIdentifier("1a"));
    EXPECT_FALSE(isIdentifier("_a"));
    EXPECT_FALSE(isIdentifier(""));
    EXPECT_TRUE(isDottedIdentifier("aux.density"));
    EXPECT_FALSE(isDottedIdentifier("aux..density"));
    EXPECT_FALSE(isDottedIdentifier("aux."));
}

} // namespace
} // namespace morquill::taskdsl
