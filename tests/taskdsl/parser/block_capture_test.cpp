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

TEST(CaptureBlock, KeepsLinesWithTheirPlacesAndSubstitutes) {
    const std::vector<SourceLine> lines{{"@plot bar [k]  # c", "t.mq", 1},
                                        {"  x [k] # kept", "", 2},
                                        {"$no task", "u.mq", 7},
                                        {" @end", "t.mq", 3}};
    const auto [block, next] = captureBlock("@plot", lines, 0, {{"k", "v"}});
    EXPECT_EQ(next, 4U);
    EXPECT_EQ(block.header, "bar v");
    EXPECT_EQ(formatSpan(block.span), "t.mq:1:1-1:19");
    ASSERT_EQ(block.lines.size(), 2U);
    EXPECT_EQ(block.lines[0].text(), "  x v # kept");
    EXPECT_EQ(block.lines[0].lineNumber, 2U);
    EXPECT_EQ(block.lines[0].originPath, "t.mq") << "the head's, when the line has none";
    EXPECT_EQ(block.lines[1].originPath, "u.mq");
}

TEST(CaptureBlock, FaultsOfTheCapture) {
    std::vector<SourceLine> lines{{"@plot a", "t.mq", 1}, {"x", "t.mq", 2}};
    const auto message = [&lines](std::string_view keyword, std::size_t index) {
        try {
            (void)captureBlock(keyword, lines, index, {});
        } catch (const DiagnosticError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(message("@plot", 2), "invalid @plot block start");
    EXPECT_EQ(message("@derive", 2), "invalid @derive block start");
    EXPECT_EQ(message("@plot", 1), "internal error: expected @plot block");
    EXPECT_EQ(message("@derive", 0), "internal error: expected @derive block");
    EXPECT_EQ(message("@plot", 0), "t.mq:1:1-1:8: error: unterminated @plot block; expected @end");
    lines[1] = SourceLine(" @plot b", "t.mq", 2);
    EXPECT_EQ(message("@plot", 0), "t.mq:2:2-2:9: error: nested @plot blocks are not allowed");
    lines = {{"@derive a", "t.mq", 1}, {"@derive", "t.mq", 2}};
    EXPECT_EQ(message("@derive", 0), "t.mq:2:1-2:8: error: nested @derive blocks are not allowed");
    lines.pop_back();
    EXPECT_EQ(message("@derive", 0), "t.mq:1:1-1:10: error: unterminated @derive block; expected @end");
}

} // namespace
} // namespace morquill::taskdsl
