#include "taskdsl/base/source_span.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(SourceSpan, PrintsTheEndOnlyWhenItDiffers) {
    EXPECT_EQ(formatSpan({"a.mq", 3, 5, 3, 9}), "a.mq:3:5-3:9");
    EXPECT_EQ(formatSpan({"a.mq", 3, 5, 3, 5}), "a.mq:3:5");
    EXPECT_EQ(formatSpan({"", 3, 5, 4, 5}), "3:5-4:5");
}

TEST(SourceSpan, WithoutAPlacePrintsThePathAlone) {
    EXPECT_EQ(formatSpan({"a.mq", 0, 1, 1, 1}), "a.mq");
    EXPECT_EQ(formatSpan({"a.mq", 2, 1, 1, 1}), "a.mq");
    EXPECT_EQ(formatSpan({"a.mq", 1, 1, 1, 0}), "a.mq");
    EXPECT_EQ(formatSpan({}), "<unknown>");
}

TEST(SourceSpan, ACoordinateIsClampedToItsLargest) {
    constexpr std::size_t largest = 2'147'483'647;
    EXPECT_EQ(toCoordinate(0), 0);
    EXPECT_EQ(toCoordinate(largest), 2'147'483'647);
    EXPECT_EQ(toCoordinate(largest + 1), 2'147'483'647);
}

TEST(SourceSpan, OfALineStartsAfterBlanksAndTabs) {
    EXPECT_EQ(spanOfLine("a.mq", 7, " \t%x y"), (SourceSpan{"a.mq", 7, 3, 7, 7}));
    EXPECT_EQ(spanOfLine("a.mq", 7, ""), (SourceSpan{"a.mq", 7, 1, 7, 1}));
    EXPECT_EQ(spanOfLine("a.mq", 7, "  "), (SourceSpan{"a.mq", 7, 3, 7, 3}));
}

} // namespace
} // namespace morquill::taskdsl
