#include "templates/library/template_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;

TEST(ScanPlaceholders, ReturnsSortedUniqueNames) {
    EXPECT_THAT(scanPlaceholders("[func]/[basis] [func]", BuiltIns::drop), ElementsAre("basis", "func"));
    EXPECT_THAT(scanPlaceholders("", BuiltIns::drop), ElementsAre());
}

TEST(ScanPlaceholders, TakesEverythingUpToTheNextClosingBracket) {
    EXPECT_THAT(scanPlaceholders("[a b] [] [[c] [d\ne]]", BuiltIns::drop), ElementsAre("[c", "a b", "d\ne"));
    EXPECT_THAT(scanPlaceholders("[]a]", BuiltIns::drop), ElementsAre());
    EXPECT_THAT(scanPlaceholders("a] [b", BuiltIns::drop), ElementsAre());
}

TEST(ScanPlaceholders, BuiltInNamesNeedNoValue) {
    const std::string text = "[inputname] [taskname] [rootname] [originname] [sourcename]";
    EXPECT_THAT(scanPlaceholders(text, BuiltIns::drop), ElementsAre("sourcename"));
    EXPECT_THAT(scanPlaceholders(text, BuiltIns::keep),
                ElementsAre("inputname", "originname", "rootname", "sourcename", "taskname"));
}

TEST(ScanPlaceholders, NamesOfTheSourceNeedNoValue) {
    EXPECT_THAT(
        scanPlaceholders("[geom] [xyz_file] [charge] [spin] [uhf] [source] [atom_count]", BuiltIns::drop),
        ElementsAre());
    EXPECT_THAT(scanPlaceholders("[geom.cation] [charge2] [spin.a.b]", BuiltIns::drop), ElementsAre());
    EXPECT_THAT(scanPlaceholders("[geometry] [charge2x] [spin_]", BuiltIns::drop),
                ElementsAre("charge2x", "geometry", "spin_"));
}

TEST(ScanPlaceholders, OpenBracketsWithoutEndCostOneSearch) {
    EXPECT_THAT(scanPlaceholders(std::string(4'000'000, '['), BuiltIns::drop), ElementsAre());
    const auto names = scanPlaceholders("[" + std::string(4'000'000, 'x') + "]", BuiltIns::drop);
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names.front().size(), 4'000'000U);
}

TEST(SplitTemplateBlocks, SeparatesHeadAndBlocks) {
    const auto parts =
        splitTemplateBlocks("# head\ntotcore: 8\n\n$opt # first\n  %source origin\n$ freq\n  x\n");
    EXPECT_THAT(parts.headLines, ElementsAre("# head", "totcore: 8", ""));
    EXPECT_THAT(parts.blockOrder, ElementsAre("opt", "freq"));
    EXPECT_THAT(parts.blocks.at("opt"), ElementsAre("$opt # first", "  %source origin"));
    EXPECT_THAT(parts.blocks.at("freq"), ElementsAre("$ freq", "  x", ""));
}

TEST(SplitTemplateBlocks, NamesAreTakenAsTheTaskParserTakesThem) {
    const auto parts = splitTemplateBlocks("  $\"a b\"\n$\n$\"\"\n# $c\nx $d");
    EXPECT_THAT(parts.blockOrder, ElementsAre("a b"));
    EXPECT_THAT(parts.blocks.at("a b"), ElementsAre("  $\"a b\"", "$", "$\"\"", "# $c", "x $d"));
}

TEST(SplitTemplateBlocks, OfTwoBlocksWithOneNameTheLaterCounts) {
    const auto parts = splitTemplateBlocks("$a\n1\n$b\n2\n$a\n3");
    EXPECT_THAT(parts.blockOrder, ElementsAre("a", "b"));
    EXPECT_THAT(parts.blocks.at("a"), ElementsAre("$a", "3"));
}

TEST(SplitTemplateBlocks, NoLineOfAHeredocOpensABlock) {
    const auto parts =
        splitTemplateBlocks("$a\n%body << END # why\n$x\n  END  \n$b\n%extrainput <<\n$y\nEOF\n$c");
    EXPECT_THAT(parts.blockOrder, ElementsAre("a", "b", "c"));
    EXPECT_THAT(parts.blocks.at("b"), ElementsAre("$b", "%extrainput <<", "$y", "EOF"));
}

TEST(SplitTemplateBlocks, OnlyADirectiveValueThatBeginsWithTheSignOpensAHeredoc) {
    EXPECT_THAT(splitTemplateBlocks("$a\n%body cat << X\n$b\nX").blockOrder, ElementsAre("a", "b"));
    EXPECT_THAT(splitTemplateBlocks("$a\nbody << X\n$b\nX").blockOrder, ElementsAre("a", "b"));
    EXPECT_THAT(splitTemplateBlocks("%body << X\n$b\nX").blockOrder, ElementsAre("b"));
}

TEST(SplitTemplateBlocks, AHeredocWithoutEndTakesTheRest) {
    EXPECT_THAT(splitTemplateBlocks("$a\n%body << X\n$b\n$c").blockOrder, ElementsAre("a"));
}

TEST(SplitTemplateBlocks, AnEmptyTextIsOneEmptyHeadLine) {
    EXPECT_THAT(splitTemplateBlocks("").headLines, ElementsAre(""));
}

struct AutorunCase {
    std::string_view text;
    std::string_view result;
};

TEST(Autorun, IsSetOnceInTheHead) {
    const AutorunCase cases[] = {
        {"autorun: false\n\n$a\n", "autorun: true\n\n$a\n"},
        {"x: 1\nautorun : no\nautorun: false\ny: 2\n\n$a", "x: 1\nautorun: true\ny: 2\n\n$a"},
        {"$a\n", "autorun: true\n\n$a\n"},
        {"", "autorun: true\n"},
        {"x: 1\n\n$a\n", "x: 1\n\n$a\n"},
        {"define:\n  autorun: x\n\n$a\n", "define:\n  autorun: x\n\n$a\n"},
        {"autoruns: 1\nautorun\n$a\nautorun: x\n", "autoruns: 1\nautorun\n$a\nautorun: x\n"},
        {"autorun: x", "autorun: true"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(withAutorun(row.text), row.result) << row.text;
    }
}

} // namespace
} // namespace morquill::templates
