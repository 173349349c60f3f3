#include "lsp/index/block_scans.h"

#include "fixtures/file_index_print.h"

namespace {

using namespace morquill::lsp;

std::string names(std::string_view condition) {
    const auto all = printNames("$t\n%when " + std::string(condition) + "\n");
    return all.substr(all.find('\n') + 1);
}

TEST(ConditionScan, NamesTasksThatHaveToBeCompleted) {
    EXPECT_EQ(names("completed opt"), "1:16 task opt\n");
    EXPECT_EQ(names("COMPLETED allothers"), "");
    EXPECT_EQ(names("completed sp_*"), "1:16 task sp_*\n");
    EXPECT_EQ(names("(completed a or completed b) and not_a_word > 1"), "1:17 task a\n1:32 task b\n");
    EXPECT_EQ(names("completed band or completed order"), "1:16 task band\n1:34 task order\n");
}

TEST(ConditionScan, NamesTheTasksOfPlaceholders) {
    EXPECT_EQ(names("{{ opt.energy }} < {{ ts.barrier.x }}"),
              "1:9 task opt\n1:13 property energy < opt\n1:28 task ts\n1:31 property barrier.x < ts\n");
    EXPECT_EQ(names("\"completed a or {{ b.c }}\" = x"), "");
}

TEST(ConditionScan, JoiningWordsHaveWhiteSpaceOnBothSides) {
    EXPECT_EQ(names("(completed a)and (completed b)"), "");
    EXPECT_EQ(names("(completed a) and(completed b)"), "");
    EXPECT_EQ(names("((completed a) and (completed b))"), "1:18 task a\n1:36 task b\n");
    EXPECT_EQ(printWords("$t\n%when (defined a)or (defined b)\n", NameKind::word).find("or"),
              std::string::npos);
}

TEST(ConditionScan, GroupsNestNoDeeperThanTheParserReadsThem) {
    std::string deep = "completed x";
    for (int i = 0; i < 60; ++i) {
        deep = "(a = b and (" + deep + " or c = d))";
    }
    EXPECT_EQ(names(deep), "");
}

TEST(ConditionScan, JoiningWordsAreWords) {
    EXPECT_EQ(printWords("$t\n%when completed a AND (defined b OR {{ c.d }} = or)\n", NameKind::word),
              "completed AND defined OR or"); // an "or" at the end joins nothing, but is no value
    EXPECT_EQ(printWords("$t\n%when completed a AND (defined b OR {{ c.d }} = order)\n", NameKind::word),
              "completed AND defined OR");
}

} // namespace
