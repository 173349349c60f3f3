#include "taskdsl/base/canonical_scalar.h"

#include "fixtures/awkward_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CanonicalScalar, PlainWordsStandBare) {
    for (const char* text : {"a", "letters-and-hyphens", "a'b", "a\\b", "[key]", "a=b", "\xff\xA0"}) {
        EXPECT_EQ(quoteCanonicalScalar(text), text);
    }
}

TEST(CanonicalScalar, AnythingElseIsQuotedAndEscaped) {
    EXPECT_EQ(quoteCanonicalScalar(""), R"("")");
    EXPECT_EQ(quoteCanonicalScalar("a b"), R"("a b")");
    EXPECT_EQ(quoteCanonicalScalar("a:b"), R"("a:b")");
    EXPECT_EQ(quoteCanonicalScalar("a,b"), R"("a,b")");
    EXPECT_EQ(quoteCanonicalScalar("a#b"), R"("a#b")");
    EXPECT_EQ(quoteCanonicalScalar("\"\\ \t\n\r"), R"("\"\\ \t\n\r")");
    EXPECT_EQ(quoteCanonicalScalar("a\vb"), "\"a\vb\"");
    EXPECT_EQ(quoteCanonicalScalar("a\fb"), "\"a\fb\"");
}

TEST(CanonicalScalar, ReadersThatSeeMoreGetMoreQuotes) {
    EXPECT_EQ(quoteUnquotedScalar("'a'"), R"("'a'")");
    EXPECT_EQ(quoteUnquotedScalar("it's"), "it's");
    EXPECT_EQ(quoteUnquotedScalar("a b"), R"("a b")");
    for (const char* text : {"*a", "&a", "!t", "%x", "@x", "`x", "|", ">", "[a]", "]", "{a}", "}", "'a", "-",
                             "?", "~", "NULL", "---"}) {
        EXPECT_EQ(quoteSettingScalar(text), '"' + std::string(text) + '"');
    }
    for (const char* text : {"8", "true", "a'b", "-1", "plain"}) {
        EXPECT_EQ(quoteSettingScalar(text), text);
    }
    EXPECT_EQ(quoteForcedScalar("a\\b"), R"("a\\b")");
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

TEST(CanonicalScalar, DecodesOneQuotedScalarOnly) {
    EXPECT_EQ(decodeCanonicalScalar(R"("a\"b")"), "a\"b");
    EXPECT_EQ(decodeCanonicalScalar(R"("")"), "");
    for (const std::string_view text :
         {"", "\"", "a", "'a'", " \"a\"", "\"a", R"("a"b")", R"("a\")", R"("\x")"}) {
        EXPECT_EQ(decodeCanonicalScalar(text), std::nullopt) << text;
    }
}

TEST(CanonicalScalar, WhatIsWrittenReadsBack) {
    for (const auto& text : awkwardTexts()) {
        EXPECT_EQ(decodeCanonicalScalar(quoteForcedScalar(text)), text) << text;
        EXPECT_EQ(readScalar(quoteUnquotedScalar(text)), text) << text;
    }
}

TEST(CanonicalScalar, ListsReadBack) {
    const auto texts = awkwardTexts();
    for (std::size_t i = 1; i + 2 < texts.size();
         i += 3) { // the first is empty, and a list has no empty values
        const std::vector<std::string> values{texts[i], "b", texts[i + 1], texts[i + 2]};
        EXPECT_EQ(splitValueList(joinCanonicalList(values)), values) << joinCanonicalList(values);
    }
}

TEST(ValueList, SplitsAtCommasOutsideQuotes) {
    EXPECT_THAT(splitValueList(" a , 'b,c' ,, \"d,e\", f g "), ElementsAre("a", "b,c", "d,e", "f g"));
    EXPECT_THAT(splitValueList(R"("a\",b", c)"), ElementsAre("a\",b", "c"));
    EXPECT_THAT(splitValueList("\"\", ''"), IsEmpty());
    EXPECT_THAT(splitValueList(""), IsEmpty());
    EXPECT_THAT(splitValueList("a, don't, b"), ElementsAre("a", "don't, b"));
    EXPECT_THAT(splitValueList("a, \"b\\"), ElementsAre("a", "\"b\\"));
}

TEST(CanonicalScalar, ListsAndNumbers) {
    EXPECT_EQ(joinCanonicalList({"a'b", "c'd"}), R"("a'b", "c'd")");
    EXPECT_EQ(joinCanonicalList({"a", "b c", ""}), R"(a, "b c", "")");
    EXPECT_EQ(joinCanonicalList({}), "");
    EXPECT_EQ(formatCanonicalNumber(0.1), "0.1");
    EXPECT_EQ(formatCanonicalNumber(298.15), "298.15");
    EXPECT_EQ(formatCanonicalNumber(1e-7), "1e-07");
    EXPECT_EQ(formatCanonicalNumber(123456789012.0), "123456789012");
    EXPECT_EQ(formatCanonicalNumber(1234567890123.0), "1.23456789012e+12");
}

TEST(SettingScalar, ControlCharactersStandBetweenQuotes) {
    EXPECT_EQ(quoteSettingScalar(std::string_view("a\0b", 3)), std::string("\"a\0b\"", 5));
    EXPECT_EQ(quoteSettingScalar("a\x7f"), "\"a\x7f\"");
    EXPECT_EQ(quoteSettingScalar("\xc3\xa4"), "\xc3\xa4");
}

} // namespace
} // namespace morquill::taskdsl
