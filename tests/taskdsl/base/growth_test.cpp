#include "taskdsl/base/growth.h"

#include "fixtures/faults.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

const std::string message =
    "expansion of @foreach blocks and fragments exceeds 2000000 lines or 256 MiB of text";

/// The message of a call once a budget has taken `count` times what `take` takes.
template <class Take, class Call>
std::string faultAfter(std::size_t count, Take take, Call call) {
    GrowthBudget budget;
    for (std::size_t i = 0; i < count; ++i) {
        take(budget);
    }
    return messageOf([&] { call(budget); });
}

constexpr auto emptyLine = [](GrowthBudget& budget) { budget.takeLine(0); };
constexpr auto repetition = [](GrowthBudget& budget) { budget.takeRepetition(); };
constexpr auto fragment = [](GrowthBudget& budget) { budget.takeFragment(); };

TEST(GrowthBudget, HoldsTwoMillionLinesAndNotOneMore) {
    EXPECT_EQ(faultAfter(1'999'999, emptyLine, emptyLine), "no fault");
    EXPECT_EQ(faultAfter(2'000'000, emptyLine, emptyLine), message);
}

TEST(GrowthBudget, ARepetitionCountsAsFourLinesAndAFragmentAsTen) {
    EXPECT_EQ(faultAfter(499'999, repetition, repetition), "no fault");
    EXPECT_EQ(faultAfter(500'000, repetition, emptyLine), message);
    EXPECT_EQ(faultAfter(199'999, fragment, fragment), "no fault");
    EXPECT_EQ(faultAfter(200'000, fragment, emptyLine), message);
}

TEST(GrowthBudget, HoldsAQuarterOfAGibibyteOfText) {
    const auto half = [](GrowthBudget& budget) { budget.takeLine(std::size_t{128} << 20); };
    const auto oneByte = [](GrowthBudget& budget) { budget.takeLine(1); };
    EXPECT_EQ(faultAfter(1, half, half), "no fault");
    EXPECT_EQ(faultAfter(2, half, emptyLine), "no fault");
    EXPECT_EQ(faultAfter(2, half, oneByte), message);
}

} // namespace
} // namespace morquill::taskdsl
