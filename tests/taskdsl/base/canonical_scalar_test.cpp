#include "taskdsl/base/canonical_scalar.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

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
