#include "project/phrases.h"

#include <gtest/gtest.h>

namespace morquill::project {
namespace {

TEST(Phrases, AReasonStandsInParentheses) {
    EXPECT_EQ(inParentheses("exit status 3"), " (exit status 3)");
    EXPECT_EQ(inParentheses(""), "");
}

TEST(Phrases, ACommandIsExecutedOrOnlyShown) {
    EXPECT_EQ(executePrefix(true), "[mqkit][DRY-RUN] ");
    EXPECT_EQ(executePrefix(false), "[mqkit] execute ");
}

} // namespace
} // namespace morquill::project
