#include "lsp/base/json.h"

namespace {

using namespace morquill::lsp;

TEST(Json, ReadsAValue) {
    const auto value = parseJson(R"({"a":{"b":"text","n":7,"t":true,"f":false}})");
    ASSERT_TRUE(value);
    const Json& a = member(*value, "a");
    EXPECT_EQ(textMember(a, "b"), "text");
    EXPECT_EQ(integerMember(a, "n"), 7);
    EXPECT_TRUE(flagMember(a, "t"));
    EXPECT_FALSE(flagMember(a, "f"));
}

TEST(Json, WhatIsMissingOrOfAnotherTypeIsEmpty) {
    const auto value = parseJson(R"({"n":1.5,"s":"x","big":18446744073709551615,"list":[1]})");
    ASSERT_TRUE(value);
    EXPECT_TRUE(member(*value, "none").is_null());
    EXPECT_TRUE(member(member(*value, "list"), "x").is_null());
    EXPECT_EQ(textMember(*value, "n"), "");
    EXPECT_EQ(integerMember(*value, "n"), std::nullopt);
    EXPECT_EQ(integerMember(*value, "s"), std::nullopt);
    EXPECT_EQ(integerMember(*value, "big"), std::nullopt);
    EXPECT_FALSE(flagMember(*value, "s"));
}

TEST(Json, RefusesWhatIsNone) {
    for (const auto* text : {"", "{", "{]", "nul", "{\"a\":}", "[1,]", "\"\xff\"", "{} {}"}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(Json, RefusesNestingBeyondTheBound) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(parseJson(nested(maxJsonDepth)));
    EXPECT_FALSE(parseJson(nested(maxJsonDepth + 1)));
    EXPECT_FALSE(parseJson(std::string(1000000, '[')));
    // Brackets in a text do not count.
    EXPECT_TRUE(parseJson("\"" + std::string(1000, '[') + "\\\"" + std::string(1000, '[') + "\""));
}

TEST(Json, PrintsOneLineWithoutBrokenUtf8) {
    EXPECT_EQ(dumpJson(Json{{"b", "x\ny"}, {"a", 1}}), R"({"a":1,"b":"x\ny"})");
    EXPECT_EQ(dumpJson(Json("a\xff"
                            "b\xc3\xa4")),
              "\"a\xef\xbf\xbd"
              "b\xc3\xa4\"");
}

} // namespace
