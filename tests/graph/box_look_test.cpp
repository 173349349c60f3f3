#include "graph/box_look.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

TEST(BoxLook, ATaskLooksAsItsProgram) {
    for (int number = 0; number <= static_cast<int>(taskdsl::TaskProgram::script); ++number) {
        const auto program = static_cast<taskdsl::TaskProgram>(number);
        EXPECT_EQ(lookOf({NodeKind::task, program, {}}).name, taskdsl::programName(program));
    }
    EXPECT_EQ(lookOf({NodeKind::task, static_cast<taskdsl::TaskProgram>(99), {}}).name, "gaussian");
}

TEST(BoxLook, EveryOtherNodeLooksAsItsKind) {
    EXPECT_EQ(lookOf({NodeKind::missing, taskdsl::TaskProgram::orca, {}}).name, "missing");
    EXPECT_EQ(lookOf({NodeKind::selection, {}, {}}).name, "selection");
    EXPECT_EQ(lookOf({NodeKind::plot, {}, {}}).name, "plot");
    EXPECT_EQ(lookOf({NodeKind::derive, {}, {}}).name, "derive");
}

TEST(BoxLook, NoTwoLooksHaveOneNameOrOneOutlineAndFill) {
    std::set<std::string_view> names;
    std::set<std::pair<std::string_view, std::string_view>> colours;
    for (const BoxLook& look : allLooks()) {
        EXPECT_TRUE(names.insert(look.name).second) << look.name;
        EXPECT_TRUE(colours.emplace(look.fill, look.line).second) << look.name;
    }
}

TEST(BoxLook, ColoursHaveTheFormThatBothFormatsRead) {
    for (const BoxLook& look : allLooks()) {
        for (const std::string_view colour : {look.fill, look.line}) {
            EXPECT_EQ(colour.size(), 7U) << look.name;
            EXPECT_EQ(colour.front(), '#') << look.name;
            EXPECT_EQ(colour.find_first_not_of("0123456789abcdef", 1), std::string_view::npos) << look.name;
        }
    }
}

TEST(BoxLook, NodesAreCountedFromOne) {
    EXPECT_EQ(nodeId(0), "n1");
    EXPECT_EQ(nodeId(11), "n12");
}

} // namespace
} // namespace morquill::graph
