#include "taskdsl/generate/matrix_combinations.h"

#include "fixtures/test_lines.h"
#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::string> suffixesOf(const std::vector<MatrixAxis>& axes) {
    std::vector<std::string> suffixes;
    for (const auto& combination : buildMatrixCombinations(axes)) {
        suffixes.push_back(join(combination.pieces, "__"));
    }
    return suffixes;
}

TEST(VariantText, KeepsWhatANameMayHold) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"1.5 eV", "1.5_eV"},       {"***", "value"},   {"", "value"},
        {"__a__b__", "a_b"},        {"-1", "-1"},       {"a(b)", "a_b"},
        {"def2-TZVP", "def2-TZVP"}, {"\xc3\xa4x", "x"},
    };
    for (const auto& [text, clean] : rows) {
        EXPECT_EQ(cleanVariantText(text), clean);
    }
}

TEST(Combinations, TheLastIndependentAxisIsTheFastest) {
    EXPECT_THAT(suffixesOf({{"a", {"1", "2"}, {}, {}}, {"b", {"x", "y"}, {}, {}}}),
                ElementsAre("a_1__b_x", "a_1__b_y", "a_2__b_x", "a_2__b_y"));
}

TEST(Combinations, NamesStandForTheirValues) {
    EXPECT_THAT(suffixesOf({{"a", {"1", "2"}, {"low", "very high"}, {}}}), ElementsAre("low", "very_high"));
}

TEST(Combinations, AMappedAxisFollowsItsTargetWhereverItStands) {
    const std::vector<MatrixAxis> axes{
        {"d", {"x", "y"}, {}, "f"}, {"f", {"1", "2"}, {}, {}}, {"b", {"u", "v"}, {}, {}}};
    EXPECT_THAT(suffixesOf(axes),
                ElementsAre("d_x__f_1__b_u", "d_x__f_1__b_v", "d_y__f_2__b_u", "d_y__f_2__b_v"));
    const auto combination = buildMatrixCombinations(axes).at(2);
    EXPECT_THAT(combination.pairs, ElementsAre(Pair("d", "y"), Pair("f", "2"), Pair("b", "u")));
    EXPECT_EQ(combination.values, (ValueMap{{"b", "u"}, {"d", "y"}, {"f", "2"}}));
    EXPECT_THAT(combination.pieces, ElementsAre("d_y", "f_2", "b_u"));
}

TEST(Combinations, AnAxisWithoutValuesHasOneEmptyValue) {
    const auto combinations = buildMatrixCombinations({{"a", {}, {}, {}}, {"b", {"1", "2"}, {}, {}}});
    ASSERT_EQ(combinations.size(), 2U);
    EXPECT_EQ(combinations[0].values.at("a"), "");
    EXPECT_EQ(join(combinations[0].pieces, "__"), "a_value__b_1");
}

TEST(Combinations, AnUnknownTargetIsAnInternalError) {
    EXPECT_EQ(messageOf([] {
                  (void)buildMatrixCombinations({{"a", {"1"}, {}, "x"}});
              }),
              "matrix internal error: missing selection for axis 'a'");
}

TEST(Combinations, TheirNumberIsBounded) {
    std::vector<MatrixAxis> axes;
    for (int i = 0; i < 64; ++i) {
        axes.push_back({"a_" + std::to_string(i), {"1", "2"}, {}, {}});
    }
    EXPECT_EQ(messageOf([&] { (void)buildMatrixCombinations(axes); }),
              "matrix yields more than 1000000 combinations");
}

TEST(MatrixValidation, AcceptsWhatFits) {
    EXPECT_NO_THROW(validateMatrix({{"a", {"1", "2"}, {"x", "y"}, {}}, {"b", {"1", "2"}, {}, "a"}}));
    EXPECT_NO_THROW(validateMatrix({{"a", {}, {"x"}, {}}, {"b", {"1"}, {}, "a"}}));
}

TEST(MatrixValidation, TellsWhatDoesNotFit) {
    const std::vector<std::pair<std::vector<MatrixAxis>, const char*>> rows{
        {{{"", {"1"}, {}, {}}}, "matrix axis key cannot be empty"},
        {{{"a", {}, {}, {}}, {"a", {}, {}, {}}}, "duplicate matrix axis 'a'"},
        {{{"a", {"1", "2"}, {"x"}, {}}}, "matrix axis 'a' has name count 1 but value count is 2"},
        {{{"a", {}, {"x", "y"}, {}}}, "matrix axis 'a' has name count 2 but value count is 1"},
        {{{"a", {"1", "2"}, {"x y", "x_y"}, {}}}, "matrix axis 'a' has duplicate variant name 'x_y'"},
        {{{"a", {"1"}, {}, "a"}}, "matrix axis 'a' cannot map to itself"},
        {{{"a", {"1"}, {}, "b"}}, "matrix axis 'a' maps to unknown axis 'b'"},
        {{{"a", {"1"}, {}, "b"}, {"b", {"1"}, {}, "c"}, {"c", {"1"}, {}, {}}},
         "matrix axis 'a' cannot map to axis 'b' because chained matrix mappings are not supported"},
        {{{"a", {"1"}, {}, "b"}, {"b", {"1", "2"}, {}, {}}},
         "matrix axis 'a' has value count 1 but mapped axis 'b' has value count 2"},
        {{}, "matrix requires at least one independent axis without 'map'"},
    };
    for (const auto& [axes, message] : rows) {
        EXPECT_EQ(messageOf([&axes = axes] { validateMatrix(axes); }), message);
    }
}

} // namespace
} // namespace morquill::taskdsl
