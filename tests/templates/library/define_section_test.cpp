#include "templates/library/define_section.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;

TEST(DefineLines, PlainValuesAreBare) {
    const taskdsl::ValueMap values{
        {"a", "B3LYP/G"}, {"b", "SMD(water)"}, {"c", "em=gd3bj"}, {"d", "6-31G <x ;$\\ y"}};
    EXPECT_THAT(buildDefineLines({"a", "b", "c", "d"}, values),
                ElementsAre("  a: B3LYP/G", "  b: SMD(water)", "  c: em=gd3bj", "  d: 6-31G <x ;$\\ y"));
}

TEST(DefineLines, SpecialCharactersBringQuotesAndNoEscapes) {
    for (const char c : std::string(":{}[]#,&*!|>'\"%@`")) {
        const std::string value = std::string("x") + c;
        EXPECT_THAT(buildDefineLines({"k"}, {{"k", value}}), ElementsAre("  k: \"" + value + "\""));
    }
}

TEST(DefineLines, AValueWithLineFeedsIsABlock) {
    EXPECT_THAT(buildDefineLines({"k"}, {{"k", "a: 1\n\nb"}}),
                ElementsAre("  k: |", "    a: 1", "    ", "    b"));
}

TEST(DefineLines, AMissingOrEmptyValueLeavesABlankToFillIn) {
    EXPECT_THAT(buildDefineLines({"a", "b"}, {{"b", ""}}), ElementsAre("  a: ", "  b: "));
}

TEST(DefineSection, IsTheKeyAndItsLines) {
    EXPECT_EQ(buildDefineSection({"a", "b"}, {{"a", "1"}}), "define:\n  a: 1\n  b: ");
}

struct ReplaceCase {
    std::string_view text;
    std::string_view result;
};

TEST(ReplaceDefineSection, LeavesTheTextAroundAsItIs) {
    const ReplaceCase cases[] = {
        {"x: 1\n define: \n  a: 0\n  b: 0\n\n$t\n", "x: 1\nNEW\n\n\n$t\n"}, // the old blank line stays
        {"define:\n  a: 0\n  $t\n", "NEW\n\n  $t\n"},
        {"define:\n  a: 0", "NEW\n"},
        {"define:\n\ndefine:\n  b: 0\n", "NEW\n\n\ndefine:\n  b: 0\n"},
        {"# head\n$t\n", "NEW\n\n# head\n$t\n"},
        {"define: # old\n$t", "NEW\n\ndefine: # old\n$t"},
        {"", "NEW\n\n"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(replaceDefineSection(row.text, "NEW"), row.result) << row.text;
    }
}

} // namespace
} // namespace morquill::templates
