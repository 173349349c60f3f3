#include "taskdsl/base/shell_words.h"

#include "fixtures/awkward_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

TEST(ShellWords, QuotesGroupAndVanish) {
    EXPECT_THAT(splitShellWords("  a 'b c' \"d e\"f "), ElementsAre("a", "b c", "d ef"));
    EXPECT_THAT(splitShellWords("'' \"\""), ElementsAre("", ""));
    EXPECT_THAT(splitShellWords("''a\"\" b''"), ElementsAre("a", "b"));
    EXPECT_THAT(splitShellWords(R"('a"b' "a'b")"), ElementsAre("a\"b", "a'b"));
    EXPECT_THAT(splitShellWords(""), ElementsAre());
}

TEST(ShellWords, BackslashProtectsQuotesBackslashAndWhiteSpace) {
    EXPECT_THAT(splitShellWords(R"(a\ b \" \\ \n)"), ElementsAre("a b", "\"", "\\", "\\n"));
    EXPECT_THAT(splitShellWords(R"("a\"b\x")"), ElementsAre(R"(a"b\x)"));
    EXPECT_THAT(splitShellWords(R"('a\'b)"), ElementsAre("a\\b"));
    EXPECT_THAT(splitShellWords("\\\n a\\\tb"), ElementsAre("\n", "a\tb"));
}

TEST(ShellWords, UnclosedQuotesRunToTheEnd) {
    EXPECT_THAT(splitShellWords("\"a b"), ElementsAre("a b"));
    EXPECT_THAT(splitShellWords("'a b"), ElementsAre("a b"));
    EXPECT_THAT(splitShellWords("\""), ElementsAre(""));
    EXPECT_THAT(splitShellWords("a\\"), ElementsAre("a\\"));
    EXPECT_THAT(splitShellWords("\"a\\"), ElementsAre("a\\"));
}

TEST(ShellWords, AWordIsQuotedWhereItWouldNotComeBack) {
    EXPECT_EQ(quoteShellWord(""), "\"\"");
    EXPECT_EQ(quoteShellWord("a,b:c=[d]"), "a,b:c=[d]");
    EXPECT_EQ(quoteShellWord("a\nb"), "\"a\nb\"");
    EXPECT_EQ(quoteShellWord("a\vb"), "\"a\vb\"");
    EXPECT_EQ(quoteShellWord("\xa0\x85"), "\xa0\x85");
    EXPECT_EQ(quoteShellWord(R"(a\"#')"), R"("a\\\"#'")");
    EXPECT_EQ(quoteForcedShellWord("a"), "\"a\"");
}

TEST(ShellWords, WhatIsQuotedReadsBack) {
    for (const auto& text : awkwardTexts()) {
        EXPECT_THAT(splitShellWords("a " + quoteShellWord(text) + " b"), ElementsAre("a", text, "b"));
        EXPECT_THAT(splitShellWords(quoteForcedShellWord(text)), ElementsAre(text));
    }
}

} // namespace
} // namespace morquill::taskdsl
