#include "taskdsl/generate/matrix.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<MatrixAxis> readBlock(std::string_view text) {
    return parseMatrixBlock(makeSourceLines(text, "t.mq"), 0).value;
}

TEST(MatrixBlock, MappingSyntaxHasOneAxisPerLine) {
    const auto lines =
        makeSourceLines("matrix:\n  a: 1, 2 # values\n\n# comment\n   b: x\n  c:\n  no colon\n $t\n", "t.mq");
    const auto block = parseMatrixBlock(lines, 1);
    EXPECT_THAT(block.value, ElementsAre(MatrixAxis{"a", {"1", "2"}, {}, {}}, MatrixAxis{"b", {"x"}, {}, {}},
                                         MatrixAxis{"c", {}, {}, {}}));
    EXPECT_EQ(block.next, 7U);
}

TEST(MatrixBlock, ListSyntaxHasNamesAndMaps) {
    EXPECT_THAT(readBlock("  - f: B3LYP, wB97X-D\n"
                          "    name: b3, wb\n"
                          "  - d: gd3bj, none\n"
                          "      map: f\n"
                          "  $t\n"),
                ElementsAre(MatrixAxis{"f", {"B3LYP", "wB97X-D"}, {"b3", "wb"}, {}},
                            MatrixAxis{"d", {"gd3bj", "none"}, {}, "f"}));
}

TEST(MatrixBlock, TellsWhatDoesNotFit) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"  a: 1\n  - b: 2\n", "matrix cannot mix mapping syntax with list syntax"},
        {"  - b: 2\n  a: 1\n", "matrix cannot mix mapping syntax with list syntax"},
        {"  - b\n", "matrix list syntax requires top-level '- key: values' items"},
        {"  -\n", "matrix list syntax requires top-level '- key: values' items"},
        {"  - a: 1\n    - b: 2\n", "matrix list syntax requires top-level '- key: values' items"},
        {"  - : 1, 2\n", "matrix list item must define one primary axis"},
        {"  - a: 1\n  name: x\n", "matrix axis 'a' attributes must be indented more than the '- ' item line"},
        {"    - a: 1\n  map: x\n",
         "matrix axis 'a' attributes must be indented more than the '- ' item line"},
        {"  - a: 1\n    name\n", "matrix axis 'a' contains an invalid attribute line"},
        {"  - a: 1\n    : x\n", "matrix axis 'a' contains an invalid attribute line"},
        {"  - a: 1\n    label: x\n", "matrix axis 'a' contains unknown attribute 'label'"},
        {"  - a: 1\n    map: x, y\n", "matrix axis 'a' field 'map' must contain exactly one value"},
        {"  - a: 1\n    map:\n", "matrix axis 'a' field 'map' must contain exactly one value"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([text = text] { (void)readBlock(text); }), message) << text;
    }
}

TEST(MergeMatrixAxes, ReplacesInPlaceOrKeeps) {
    TaskDocument document;
    mergeMatrixAxes(document, {{"a", {"1"}, {}, {}}, {"b", {"2"}, {}, {}}}, NameClash::takeNew);
    mergeMatrixAxes(document, {{"a", {"3"}, {"n"}, {}}, {"c", {}, {}, "b"}}, NameClash::keepOld);
    EXPECT_THAT(document.matrixAxes,
                ElementsAre(MatrixAxis{"a", {"1"}, {}, {}}, MatrixAxis{"b", {"2"}, {}, {}},
                            MatrixAxis{"c", {}, {}, "b"}));
    mergeMatrixAxes(document, {{"a", {"3"}, {"n"}, {}}}, NameClash::takeNew);
    EXPECT_EQ(document.matrixAxes[0], (MatrixAxis{"a", {"3"}, {"n"}, {}}));
    EXPECT_THAT(document.matrixValues,
                ElementsAre(testing::Pair("a", ElementsAre("3")), testing::Pair("b", ElementsAre("2")),
                            testing::Pair("c", IsEmpty())));
}

TEST(MergeMatrixAxes, RefusesReservedKeysAndMoreAxesThanAnybodyNeeds) {
    TaskDocument document;
    EXPECT_EQ(messageOf([&] {
                  mergeMatrixAxes(document, {{"geom.a", {}, {}, {}}}, NameClash::takeNew);
              }),
              "matrix axis 'geom.a' is reserved for runtime %source placeholders");
    std::vector<MatrixAxis> many;
    for (int i = 0; i <= 1000; ++i) {
        many.push_back({"a_" + std::to_string(i), {}, {}, {}});
    }
    EXPECT_EQ(messageOf([&] { mergeMatrixAxes(document, many, NameClash::takeNew); }),
              "matrix has more than 1000 axes");
}

} // namespace
} // namespace morquill::taskdsl
