#include "taskdsl/base/scan.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(StripComment, EndsAtAHashAtTheStartOrAfterWhiteSpace) {
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
    // After a backslash a quote is not counted, but outside quotes the walk sees it all the same.
    EXPECT_EQ(stripComment(R"(\" "a # b")"), R"(\" "a )");
}

TEST(Unquote, RemovesOnePairAndHasNoEscapes) {
    EXPECT_EQ(unquote(" \"a\\\"b\" "), "a\\\"b");
    EXPECT_EQ(unquote("'a'"), "a");
    EXPECT_EQ(unquote("'a\""), "'a\"");
    EXPECT_EQ(unquote("\""), "\"");
    EXPECT_EQ(unquote("\"\""), "");
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

TEST(Classifiers, IndentedIsWhatBeginsWithABlankOrATab) {
    EXPECT_TRUE(isIndented(" a"));
    EXPECT_TRUE(isIndented("\ta"));
    EXPECT_FALSE(isIndented("a b"));
    EXPECT_FALSE(isIndented("\va"));
    EXPECT_FALSE(isIndented(""));
}

TEST(Classifiers, MatchWordTakesAnyWhiteSpace) {
    EXPECT_TRUE(matchWord("guess\tx", "guess"));
    EXPECT_TRUE(matchWord("guess", "guess"));
    EXPECT_FALSE(matchWord("guessx", "guess"));
}

TEST(Classifiers, TextAfterAWordInAnyCase) {
    EXPECT_EQ(textAfterWord("%Control  x ", "%control"), "x");
    EXPECT_EQ(textAfterWord("defined\ta", "DEFINED"), "a");
    EXPECT_EQ(textAfterWord("defined\va", "defined"), "\va"); // white space, but nothing that is trimmed
    EXPECT_EQ(textAfterWord("defined", "defined"), "");
    EXPECT_EQ(textAfterWord("defineda", "defined"), std::nullopt);
    EXPECT_EQ(textAfterWord("def", "defined"), std::nullopt);
}

TEST(DottedParts, AreAllTestedAndMayBeEmpty) {
    const auto isShort = [](std::string_view part) { return part.size() < 3; };
    EXPECT_TRUE(allDottedParts("aa.b", isShort));
    EXPECT_TRUE(allDottedParts("aa", isShort));
    EXPECT_TRUE(allDottedParts("", isShort));
    EXPECT_FALSE(allDottedParts("aaa.b", isShort));
    EXPECT_FALSE(allDottedParts("a.bbb", isShort));
    const auto isFilled = [](std::string_view part) { return !part.empty(); };
    EXPECT_TRUE(allDottedParts("a.b.c", isFilled));
    EXPECT_FALSE(allDottedParts("a.b.", isFilled));
    EXPECT_FALSE(allDottedParts("a..b", isFilled));
    EXPECT_FALSE(allDottedParts(".a", isFilled));
    EXPECT_FALSE(allDottedParts("", isFilled));
}

TEST(AssignedValue, IsQuotedOrEndsAtWhiteSpace) {
    struct Row {
        std::string_view text;
        std::optional<std::string_view> value;
        std::string_view rest;
    };
    const std::vector<Row> rows{
        {"=a b", "a", " b"},
        {" = \"a b\"c", "\"a b\"", "c"},
        {"\n=\v'a \"b' c", "'a \"b'", " c"},
        {R"(="a\" b")", R"("a\")", R"( b")"}, // there are no escapes
        {"='a b", "'a", " b"},                // no second quote
        {"='", "'", ""},
        {" = ", std::nullopt, " = "},
        {" a=b", std::nullopt, " a=b"},
        {"", std::nullopt, ""},
    };
    for (const auto& [text, value, rest] : rows) {
        Cursor cursor(text);
        EXPECT_EQ(takeAssignedValue(cursor), value) << text;
        EXPECT_EQ(cursor.rest(), rest) << text;
    }
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
