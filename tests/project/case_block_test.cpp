#include "project/case_block.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

TEST(CaseBlock, IsNamedAfterItsCaseAndItsTask) {
    const auto block = blockOf("/p/m1", "opt");
    EXPECT_EQ(block.caseName, "m1");
    EXPECT_EQ(block.task, "opt");
    EXPECT_EQ(block.directory, "/p/m1/opt");
    EXPECT_EQ(block.label, "m1 / $opt");
}

TEST(CaseBlock, EachIsVisitedCaseByCase) {
    std::vector<std::string> visited;
    forEachBlock({"/p/m1", "/p/m2"}, {"opt", "sp"},
                 [&](const CaseBlock& block) { visited.push_back(block.directory); });
    EXPECT_THAT(visited, ElementsAre("/p/m1/opt", "/p/m1/sp", "/p/m2/opt", "/p/m2/sp"));
}

} // namespace
} // namespace morquill::project
