#include "taskdsl/generate/foreach.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

const Collections molecules{
    {"mols", {{{"index", "1"}, {"name", "water"}}, {{"index", "2"}, {"name", "oh"}, {"q", "-1"}}}},
    {"none", {}}};

std::string expand(std::string_view text, const ValueMap& values = {}) {
    return textOf(expandForeach(linesOf(text), molecules, values));
}

TEST(Foreach, RepeatsItsLinesForEveryItem) {
    EXPECT_EQ(expand("a\n@foreach mols # all\n[mols.index] [mols.name] [mols.q] [x]\n@end\nb\n"),
              "a\n1 water [mols.q] [x]\n2 oh -1 [x]\nb\n");
    EXPECT_EQ(expand("@foreach none\nx\n@end\n"), "");
}

TEST(Foreach, SeriesRunInBothDirections) {
    EXPECT_EQ(expand("@foreach i in series(3-1)\n[i.index]:[i.value]:[i.series]\n@end\n"),
              "1:3:3\n2:2:2\n3:1:1\n");
    EXPECT_EQ(expand("@foreach i in series( -2 - -1 )\n[i.value]\n@end\n"), "-2\n-1\n");
    EXPECT_EQ(expand("@foreach i in series(-2--1)\n[i.value]\n@end\n"), "-2\n-1\n");
    EXPECT_EQ(expand("@foreach i in series(5-5)\n[i.value]\n@end\n"), "5\n");
    EXPECT_EQ(expand("@foreach i in series(9223372036854775806-9223372036854775807)\n[i.index]\n@end\n"),
              "1\n2\n");
    EXPECT_EQ(expand("@foreach i in series(-9223372036854775808--9223372036854775808)\n[i.value]\n@end\n"),
              "-9223372036854775808\n");
}

TEST(Foreach, LoopsNestAndInnerNamesCoverOuterOnes) {
    EXPECT_EQ(expand("@foreach i in series(1-2)\n@foreach j in "
                     "series(3-4)\n[i.value][j.value]\n@end\n[j.value]\n@end\n"),
              "13\n14\n[j.value]\n23\n24\n[j.value]\n");
    EXPECT_EQ(
        expand("@foreach i in series(1-1)\n@foreach i in series(7-7)\n[i.value]\n@end\n[i.value]\n@end\n"),
        "7\n1\n");
}

TEST(Foreach, HeadersInsideALoopAreNotSubstituted) {
    EXPECT_EQ(
        messageOf([] { (void)expand("@foreach mols\n@foreach i in series(1-[mols.index])\n@end\n@end\n"); }),
        "unsupported @foreach source expression 'series(1-[mols.index])'");
}

TEST(Foreach, AMissingCollectionIsAnErrorUnlessOptional) {
    EXPECT_EQ(expand("a\n@foreach? missing\nx\n@foreach y\n@end\n@end\nb\n"), "a\nb\n");
    EXPECT_EQ(messageOf([] { (void)expand("@foreach missing\n@end\n"); }),
              "undefined @foreach collection 'missing'");
}

TEST(Foreach, PlotAndDeriveBlocksAreCopiedThroughTheirEnd) {
    EXPECT_EQ(expand("@plot x\n@foreach missing\n@end\n@derive y\n  @end\n"),
              "@plot x\n@foreach missing\n@end\n@derive y\n  @end\n");
    EXPECT_EQ(expand("@plot [k]\n[k]\n@end\n", {{"k", "v"}}), "@plot v\nv\n@end\n");
}

TEST(Foreach, TellsOpenBlocksAndStrayEnds) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"@plot x\n", "unterminated @plot block"},
        {"@derive x\n$a\n", "unterminated @derive block"},
        {"@foreach mols\nx\n", "unterminated @foreach block for collection 'mols'"},
        {"@foreach i in series(1-2)\nx\n", "unterminated @foreach block for collection 'i in series(1-2)'"},
        {"@foreach mols\n@foreach x\n@end\n", "unterminated @foreach block for collection 'mols'"},
        {"@end\n", "unexpected @end without matching @foreach"},
        {"  @end # x\n", "unexpected @end without matching @foreach"},
        // The "@end" of a block inside a loop closes the loop.
        {"@foreach mols\n@plot x\n@end\n@end\n", "unterminated @plot block"},
        {"@foreach i in range(1-2)\n@end\n", "unsupported @foreach source expression 'range(1-2)'"},
        {"@foreach? i in series(1-2) x\n@end\n", "unsupported @foreach source expression 'series(1-2) x'"},
        {"@foreach i in series(1)\n@end\n", "unsupported @foreach source expression 'series(1)'"},
        {"@foreach i in series(1-)\n@end\n", "unsupported @foreach source expression 'series(1-)'"},
        {"@foreach i in Series(1-2)\n@end\n", "unsupported @foreach source expression 'Series(1-2)'"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([text = text] { (void)expand(text); }), message) << text;
    }
}

TEST(Foreach, LinesKeepTheirPlaceAndOthersAreUntouched) {
    const auto lines = expandForeach(linesOf("@foreach mols\nx\n@end\ny\n"), molecules, {});
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1].lineNumber, 2U);
    EXPECT_EQ(lines[2].lineNumber, 4U);
    EXPECT_EQ(lines[1].originPath, "t.mq");
    EXPECT_EQ(expand("[a]\n", {{"a", "1"}}), "1\n");
}

TEST(Foreach, GrowthWithoutReasonIsAnError) {
    const std::vector<std::pair<std::string, const char*>> rows{
        {"@foreach i in series(1-2000000000)\n@end\n",
         "@foreach source 'series(1-2000000000)' has more than 100000 items"},
        {"@foreach i in series(1-99999999999999999999)\n@end\n",
         "@foreach source 'series(1-99999999999999999999)' has a number beyond 64 bits"},
        {"@foreach i in series(-9223372036854775808-9223372036854775807)\n@end\n",
         "@foreach source 'series(-9223372036854775808-9223372036854775807)' has more than 100000 items"},
        {"@foreach i in series(1-1000)\n@foreach j in series(1-1000)\n@end\n@end\n",
         "expansion of @foreach blocks and fragments exceeds 2000000 lines or 256 MiB of text"},
    };
    for (const auto& [text, message] : rows) {
        EXPECT_EQ(messageOf([&text = text] { (void)expand(text); }), message) << text;
    }
}

TEST(Foreach, DeepNestingIsAnErrorAndThousandsOfBlocksStayLinear) {
    std::string nested;
    std::string rows;
    for (int i = 0; i < 20'000; ++i) {
        nested += "@foreach i in series(1-1)\n";
        rows += "@foreach i in series(1-1)\n[i.value]\n@end\n";
    }
    std::string ends;
    for (int i = 0; i < 20'000; ++i) {
        ends += "@end\n";
    }
    EXPECT_EQ(messageOf([&] { (void)expand(nested + ends); }),
              "@foreach blocks are nested more than 1000 deep");
    EXPECT_EQ(messageOf([&] { (void)expand(nested); }),
              "unterminated @foreach block for collection 'i in series(1-1)'");
    EXPECT_EQ(expand(rows).size(), 40'000U);
}

} // namespace
} // namespace morquill::taskdsl
