#include "graph/dot_text.h"

#include "fixtures/golden.h"
#include "fixtures/parse_text.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

std::string dotOf(const std::string& file, VariantView view) {
    return renderDot(buildStudyGraph(taskdsl::parse(golden::text("graph/" + file)).document, view));
}

TEST(DotText, AnEmptyGraph) {
    EXPECT_EQ(
        renderDot({}),
        "digraph study {\n"
        "  graph [fontname=\"Helvetica\", fontsize=11, color=\"#999999\", style=rounded, nodesep=0.5];\n"
        "  node [fontname=\"Helvetica\", fontsize=11];\n"
        "  edge [fontname=\"Helvetica\", fontsize=9];\n"
        "}\n");
}

TEST(DotText, EveryKindOfBoxAndArrow) {
    EXPECT_EQ(dotOf("chain.mq", VariantView::collapsed), golden::text("graph/chain.dot"));
    EXPECT_EQ(dotOf("chain.mq", VariantView::expanded), golden::text("graph/chain.dot"));
}

TEST(DotText, VariantsAsOneBoxAndInClusters) {
    EXPECT_EQ(dotOf("matrix.mq", VariantView::collapsed), golden::text("graph/matrix.dot"));
    EXPECT_EQ(dotOf("matrix.mq", VariantView::expanded), golden::text("graph/matrix.expanded.dot"));
}

TEST(DotLabel, OneLineOrSeveral) {
    EXPECT_EQ(dotLabel({"opt"}), "\"opt\"");
    EXPECT_EQ(dotLabel({"a", "", "b"}), "\"a\\n\\nb\"");
    EXPECT_EQ(dotLabel({}), "\"\"");
}

TEST(DotLabel, WhatGraphvizReadsAsItsOwnIsEscaped) {
    EXPECT_EQ(dotLabel({"say \"a\""}), R"("say \"a\"")");
    EXPECT_EQ(dotLabel({R"(\N \n \)"}), R"("\\N \\n \\")");
    EXPECT_EQ(dotLabel({R"(\")"}), R"("\\\"")");
    EXPECT_EQ(dotLabel({"a & b &lt; &amp;"}), R"("a &amp; b &amp;lt; &amp;amp;")");
    EXPECT_EQ(dotLabel({"<b>{x|y}[0]</b>; // # \u03bb"}), "\"<b>{x|y}[0]</b>; // # \u03bb\"");
}

} // namespace
} // namespace morquill::graph
