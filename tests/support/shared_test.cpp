#include "support/shared.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

using ::testing::ElementsAre;

TEST(SharedText, CopiesAreOneText) {
    const SharedText text("a path that is too long for the small string buffer");
    const SharedText copy = text;
    EXPECT_EQ(&copy.str(), &text.str());
    EXPECT_EQ(copy, text);
    EXPECT_EQ(copy, SharedText(text.str())) << "equal texts are equal, shared or not";
    EXPECT_TRUE(SharedText("").empty());
    EXPECT_EQ(SharedText().str(), "");
}

TEST(Shared, IsCopiedWhenItIsEdited) {
    Shared<std::vector<int>> first(std::vector<int>{1, 2});
    Shared<std::vector<int>> second = first;
    EXPECT_TRUE(first.sharesWith(second));
    second.edit().push_back(3);
    EXPECT_FALSE(first.sharesWith(second));
    EXPECT_THAT(*first, ElementsAre(1, 2));
    EXPECT_THAT(*second, ElementsAre(1, 2, 3));
    const int* place = &second.front();
    second.edit()[0] = 7;
    EXPECT_EQ(&second.front(), place) << "the only holder edits in place";
}

TEST(Shared, WithoutAValueIsAnEmptyOne) {
    Shared<std::vector<int>> none;
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.size(), 0U);
    none.edit().push_back(1);
    EXPECT_THAT(*none, ElementsAre(1));
    none.reset();
    EXPECT_TRUE(none.empty());
}

} // namespace
} // namespace morquill
