#include "templates/library/variable_template.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST(VariableTemplate, ReadsTheFormShownToUsers) {
    const auto result = parseVariableTemplate("name: \"Basic DFT setup\"\n"
                                              "description: \"Basic variables for DFT jobs\"\n"
                                              "variables:\n"
                                              "  func: \"B3LYP\"\n"
                                              "  basis: \"6-31G(d)\"\n",
                                              "file");
    EXPECT_EQ(result.name, "Basic DFT setup");
    EXPECT_EQ(result.description, "Basic variables for DFT jobs");
    EXPECT_THAT(result.values, ElementsAre(Pair("basis", "6-31G(d)"), Pair("func", "B3LYP")));
}

TEST(VariableTemplate, WithoutANameTheFileNameIsUsed) {
    const auto result = parseVariableTemplate("# nothing\n", "dft");
    EXPECT_EQ(result.name, "dft");
    EXPECT_EQ(result.description, "");
    EXPECT_THAT(result.values, IsEmpty());
}

TEST(VariableTemplate, ValuesLoseOneMatchingPairOfQuotes) {
    const auto result =
        parseVariableTemplate("variables:\n a: ''x''\n b: \"y'\n\tc : http://z\n d:\n e: ' f '\n", "");
    EXPECT_THAT(result.values, ElementsAre(Pair("a", "'x'"), Pair("b", "\"y'"), Pair("c", "http://z"),
                                           Pair("d", ""), Pair("e", " f ")));
}

TEST(VariableTemplate, OtherUnindentedLinesCloseTheSection) {
    const auto result =
        parseVariableTemplate("  early: 1\nvariables:\n\n  a: 1\n# comment\n  # comment: 2\n  b: 2\n"
                              "notes:\n  c: 3\nvariables:\n  d: 4\n  no colon\n",
                              "");
    EXPECT_THAT(result.values, ElementsAre(Pair("a", "1"), Pair("b", "2"), Pair("d", "4")));
}

TEST(VariableTemplate, ALaterValueReplacesAnEarlierOneAndCarriageReturnsAreTrimmed) {
    const auto result = parseVariableTemplate("name: x\r\nvariables:\r\n  a: 1\r\n  a: \"2\"\r\n", "");
    EXPECT_EQ(result.name, "x");
    EXPECT_THAT(result.values, ElementsAre(Pair("a", "2")));
}

TEST(VariableTemplate, FindsTheFirstWithExactlyThatName) {
    const std::vector<VariableTemplate> templates{{"a", "", "1", {}}, {"b", "", "2", {}}, {"b", "", "3", {}}};
    ASSERT_NE(findVariableTemplate(templates, "b"), nullptr);
    EXPECT_EQ(findVariableTemplate(templates, "b")->path, "2");
    EXPECT_EQ(findVariableTemplate(templates, "B"), nullptr);
}

} // namespace
} // namespace morquill::templates
