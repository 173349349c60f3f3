#include "taskdsl/base/line_kind.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(LineKinds, AreToldFromTheCleanedLine) {
    struct Row {
        std::string_view line;
        LineKind kind;
    };
    const Row rows[] = {
        {"", LineKind::empty},
        {"text", LineKind::text},
        {"a %keywords", LineKind::text},
        {"%", LineKind::text},
        {"%keywords", LineKind::directive},
        {"%control x", LineKind::directive},
        {"% ", LineKind::directive},
        {"$", LineKind::text},
        {"$\"\"", LineKind::text},
        {"$opt", LineKind::taskHeader},
        {"$\"a b\"", LineKind::taskHeader},
        {"&INCLUDE", LineKind::include},
        {"&INCLUDE a.mq", LineKind::include},
        {"&INCLUDED", LineKind::text},
        {"&INCLUDE\ta.mq", LineKind::text}, // a blank, not any white space
        {"&include a.mq", LineKind::text},
        {"INCLUDE x", LineKind::text},
        {"&FRAGMENT", LineKind::fragment},
        {"&FRAGMENT task a", LineKind::fragment},
        {"FRAGMENT", LineKind::text},
        {"&FRAGMENTS", LineKind::text},
        {"&Fragment task", LineKind::text},
        {"x &FRAGMENT", LineKind::text},
        {"&FRAGMENT(a)", LineKind::text},
        {"&FRAGMENT\ttask", LineKind::text},
        {"@plot", LineKind::plot},
        {"@plot bar", LineKind::plot},
        {"@plot\tx", LineKind::text},
        {"@plots", LineKind::text},
        {"@derive", LineKind::derive},
        {"@derive x", LineKind::derive},
        {"@end", LineKind::end},
        {"@end x", LineKind::text},
        {"@foreach mols", LineKind::loop},
        {"@foreach? x in series(1-2)", LineKind::loop},
        {"@foreach", LineKind::text},
        {"@foreach 1x", LineKind::text},
        {"@", LineKind::text},
    };
    for (const auto& [line, kind] : rows) {
        EXPECT_EQ(kindOfCleanLine(line), kind) << line;
    }
}

TEST(LineKinds, StructureClosesTheBlockOfADirective) {
    for (const LineKind kind : {LineKind::directive, LineKind::taskHeader, LineKind::include, LineKind::plot,
                                LineKind::derive, LineKind::end}) {
        EXPECT_TRUE(isStructure(kind)) << static_cast<int>(kind);
    }
    for (const LineKind kind :
         {LineKind::empty, LineKind::removedInclude, LineKind::text, LineKind::fragment, LineKind::loop}) {
        EXPECT_FALSE(isStructure(kind)) << static_cast<int>(kind);
    }
    EXPECT_TRUE(opensBlock(LineKind::plot));
    EXPECT_TRUE(opensBlock(LineKind::derive));
    EXPECT_FALSE(opensBlock(LineKind::loop));
    EXPECT_FALSE(opensBlock(LineKind::end));
}

TEST(LineKinds, TheBodyBeginsAtATaskABlockOrALoop) {
    for (const auto* line : {"$a", "@plot", "@derive d", "@end", "@foreach x"}) {
        EXPECT_TRUE(beginsBody(kindOfCleanLine(line))) << line;
    }
    for (const auto* line : {"", "a: 1", "%keywords hf", "&INCLUDE a.mq", "&FRAGMENT when w"}) {
        EXPECT_FALSE(beginsBody(kindOfCleanLine(line))) << line;
    }
}

TEST(HashInclude, IsTheWordInAnyCaseBeforeWhiteSpaceOrTheEnd) {
    for (const char* line : {"#INCLUDE", "#include a.mq", "#Include\ta", "#INCLUDE\v"}) {
        EXPECT_TRUE(isHashInclude(line)) << line;
    }
    for (const char* line :
         {"", "#", "# include a", "#INCLUD", "#INCLUDED a", "#include<a>", "INCLUDE a", "&INCLUDE a"}) {
        EXPECT_FALSE(isHashInclude(line)) << line;
    }
}

} // namespace
} // namespace morquill::taskdsl
