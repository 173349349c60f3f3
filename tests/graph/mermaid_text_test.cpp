#include "graph/mermaid_text.h"

#include "fixtures/golden.h"
#include "fixtures/parse_text.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

std::string mermaidOf(const std::string& file, VariantView view) {
    return renderMermaid(buildStudyGraph(taskdsl::parse(golden::text("graph/" + file)).document, view));
}

TEST(MermaidText, AnEmptyGraph) {
    EXPECT_EQ(renderMermaid({}), "flowchart TD\n");
}

TEST(MermaidText, EveryKindOfBoxAndArrow) {
    EXPECT_EQ(mermaidOf("chain.mq", VariantView::collapsed), golden::text("graph/chain.mmd"));
    EXPECT_EQ(mermaidOf("chain.mq", VariantView::expanded), golden::text("graph/chain.mmd"));
}

TEST(MermaidText, VariantsAsOneBoxAndInFrames) {
    EXPECT_EQ(mermaidOf("matrix.mq", VariantView::collapsed), golden::text("graph/matrix.mmd"));
    EXPECT_EQ(mermaidOf("matrix.mq", VariantView::expanded), golden::text("graph/matrix.expanded.mmd"));
}

TEST(MermaidLabel, OneLineOrSeveral) {
    EXPECT_EQ(mermaidLabel({"opt"}), "\"opt\"");
    EXPECT_EQ(mermaidLabel({"a", "", "b"}), "\"a<br/><br/>b\"");
    EXPECT_EQ(mermaidLabel({}), "\"\"");
}

TEST(MermaidLabel, SignsAreWrittenByTheirNumber) {
    const std::pair<const char*, const char*> rows[] = {
        {"\"a\"", "#34;a#34;"},
        {"<b>&lt;#quot;", "#60;b#62;#38;lt#59;#35;quot#59;"},
        {"*a* `b` ~~c~~", "#42;a#42; #96;b#96; #126;#126;c#126;#126;"},
        {"a[0](x){y}|z|", "a#91;0#93;#40;x#41;#123;y#125;#124;z#124;"},
        {"%%{init}%%", "#37;#37;#123;init#125;#37;#37;"},
        {"\u00e9 \u03bb \u00b0", "\u00e9 \u03bb \u00b0"},
    };
    for (const auto& [text, label] : rows) {
        EXPECT_EQ(mermaidLabel({text}), '"' + std::string(label) + '"');
    }
}

TEST(MermaidLabel, SignsBetweenWordsStay) {
    const std::pair<const char*, const char*> rows[] = {
        {"opt__b3lyp-d3", "opt__b3lyp-d3"},
        {"_a_ b_", "#95;a#95; b#95;"},
        {"- a -1", "#45; a #45;1"},
        {"5.0 1. a.b", "5.0 1#46; a#46;b"},
    };
    for (const auto& [text, label] : rows) {
        EXPECT_EQ(mermaidLabel({text}), '"' + std::string(label) + '"');
    }
}

TEST(MermaidLabel, WhatIsMisreadWithItsNumberIsKeptApart) {
    const std::pair<const char*, const char*> rows[] = {
        {"a\\nb \\x", "a#92;#8288;nb #92;x"},
        {"$$$ $", "#36;#8288;#36;#8288;#36; #36;"},
        {"fa:fa-car a:b", "fa#58;#8288;fa-car a#58;b"},
        {"\ufb02\u00b0\u00b035\u00b6\u00df", "\ufb02#8288;\u00b0\u00b035\u00b6#8288;\u00df"},
        {"\ufb02 \u00b6", "\ufb02 \u00b6"},
    };
    for (const auto& [text, label] : rows) {
        EXPECT_EQ(mermaidLabel({text}), '"' + std::string(label) + '"');
    }
}

} // namespace
} // namespace morquill::graph
