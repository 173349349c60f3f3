#include "support/line_builder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace morquill {
namespace {

TEST(LineBuilder, JoinsThePiecesOfALine) {
    LineBuilder text;
    text.line("a: ", std::string("b"), std::string_view(" c")).line().line("d");
    EXPECT_EQ(text.text(), "a: b c\n\nd\n");
}

TEST(LineBuilder, LeavesOutALabelWithoutAValue) {
    LineBuilder text;
    text.filled("a: ", "").filled("b: ", "1");
    EXPECT_EQ(text.text(), "b: 1\n");
}

TEST(LineBuilder, BuildsALineInSteps) {
    LineBuilder text;
    text.open("a").add(" ", "b");
    EXPECT_EQ(text.text(), "a b");
    text.add("\nc").close();
    EXPECT_EQ(text.text(), "a b\nc\n");
}

TEST(LineBuilder, BeginsEveryLineWithItsIndent) {
    LineBuilder text("> ");
    text.line("a");
    text.deeper();
    text.open("b").add("c").close();
    text.deeper();
    text.line("d");
    text.shallower();
    text.shallower();
    text.shallower(); // there is nothing further out
    text.line("e");
    EXPECT_EQ(text.text(), "> a\n>   bc\n>     d\n> e\n");
}

TEST(LineBuilder, CanBeCutBackAndTaken) {
    LineBuilder text;
    EXPECT_TRUE(text.empty());
    text.line("a");
    const auto size = text.size();
    EXPECT_EQ(size, 2U);
    text.line("b").line("c");
    EXPECT_EQ(text.textFrom(size), "b\nc\n");
    text.cutTo(size);
    EXPECT_EQ(text.line("d").take(), "a\nd\n");
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.line("e").take(), "e\n");
}

} // namespace
} // namespace morquill
