#include "taskdsl/base/line_blocks.h"

#include "fixtures/test_lines.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(FindBlockEnd, IsTheFirstEndAfterTheHead) {
    const auto lines = linesOf("@plot bar\n@plot x\n@end x\n  @end # c\n@end\n");
    const BlockEnd end = findBlockEnd(lines, 0, lines.size());
    EXPECT_TRUE(end.isClosed);
    EXPECT_EQ(end.index, 3U);
    EXPECT_EQ(findBlockEnd(lines, 3, lines.size()).index, 4U) << "the head itself does not count";
}

TEST(FindBlockEnd, AnOpenBlockRunsToTheLimit) {
    const auto lines = linesOf("@plot bar\nx\n@end\n");
    const BlockEnd end = findBlockEnd(lines, 0, 2);
    EXPECT_FALSE(end.isClosed);
    EXPECT_EQ(end.index, 2U);
    EXPECT_FALSE(findBlockEnd(lines, 2, lines.size()).isClosed);
}

TEST(Heredocs, HaveTheTerminatorThatTheirValueNames) {
    EXPECT_TRUE(opensHeredoc("<<"));
    EXPECT_TRUE(opensHeredoc("<<END"));
    EXPECT_FALSE(opensHeredoc("< <"));
    EXPECT_EQ(heredocTerminator("<< END "), "END");
    EXPECT_EQ(heredocTerminator("<<END"), "END");
    EXPECT_EQ(heredocTerminator("<<  "), "EOF");
    EXPECT_EQ(heredocEnd, "EOF");
}

TEST(FindHeredocEnd, IsTheTerminatorAloneOnItsLine) {
    const auto lines = linesOf("%body <<\nEOF # no\nxEOF\n \tEOF \nEOF\n");
    const BlockEnd end = findHeredocEnd(lines, 0, "EOF");
    EXPECT_TRUE(end.isClosed);
    EXPECT_EQ(end.index, 3U);
}

TEST(FindHeredocEnd, WithoutATerminatorItRunsToTheEndOrABoundary) {
    auto lines = linesOf("%body <<\na\n\nEOF\n");
    EXPECT_EQ(findHeredocEnd(lines, 0, "END").index, 4U);
    lines[2].directiveBoundary = true;
    const BlockEnd end = findHeredocEnd(lines, 0, "EOF");
    EXPECT_FALSE(end.isClosed);
    EXPECT_EQ(end.index, 2U);
}

TEST(LineEnds, AreLineFeedAndCarriageReturn) {
    EXPECT_TRUE(lineEnds.meets("a\nb"));
    EXPECT_TRUE(lineEnds.meets("a\r"));
    EXPECT_FALSE(lineEnds.meets("a \t\v\f"));
}

} // namespace
} // namespace morquill::taskdsl
