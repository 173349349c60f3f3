// Captures with places and substitution are the matter of directives_test.cpp.

#include "taskdsl/parser/block_capture.h"

#include "fixtures/test_lines.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(CaptureBlock, TakesTheLinesBetweenHeadAndEnd) {
    const auto lines = linesOf("x\n  @derive d # note\n\n@plot inner\n%y\n @end # of d\nbehind\n");
    const auto [block, next] = captureBlock("@derive", lines, 1, {});
    EXPECT_EQ(block.header, "d");
    EXPECT_EQ(formatSpan(block.span), "t.mq:2:3-2:19");
    EXPECT_EQ(textOf(block.lines), "\n@plot inner\n%y\n");
    EXPECT_EQ(next, 6U);
}

TEST(CaptureBlock, AnEmptyBlockHasNoLinesAndAHeadNeedsNoText) {
    const auto lines = linesOf("@plot\n@end\n");
    const auto [block, next] = captureBlock("@plot", lines, 0, {});
    EXPECT_EQ(block.header, "");
    EXPECT_TRUE(block.lines.empty());
    EXPECT_EQ(next, 2U);
}

TEST(CaptureBlock, ABlockHoldsNoOtherOfItsKind) {
    const auto lines = linesOf("@plot a\n@plot b\n@end\n");
    EXPECT_EQ(messageOf([&] { (void)captureBlock("@plot", lines, 0, {}); }),
              "t.mq:2:1-2:8: error: nested @plot blocks are not allowed");
}

} // namespace
} // namespace morquill::taskdsl
