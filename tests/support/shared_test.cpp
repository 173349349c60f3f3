#include "support/shared.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

using ::testing::ElementsAre;

TEST(SharedText, CopiesAreOneText) {
    const SharedText text("a path that is too long for the small string buffer");
    const SharedText copy = text;
    EXPECT_EQ(copy.view().data(), text.view().data());
    EXPECT_EQ(copy, text);
    EXPECT_EQ(copy, SharedText(text.str())) << "equal texts are equal, shared or not";
    EXPECT_TRUE(SharedText("").empty());
    EXPECT_EQ(SharedText().str(), "");
}

TEST(SharedText, OutlivesTheCopyThatItCameFrom) {
    SharedText last;
    {
        const SharedText first(std::string("a\0b", 3));
        last = first;
    }
    EXPECT_EQ(last.view(), std::string_view("a\0b", 3));
    SharedText taken = std::move(last);
    EXPECT_EQ(taken.size(), 3U);
    taken = SharedText(taken); // its own text
    EXPECT_EQ(taken.size(), 3U);
    taken.clear();
    EXPECT_TRUE(taken.empty());
}

TEST(SharedText, ComparesWithEveryKindOfText) {
    const SharedText text("ab");
    EXPECT_TRUE(text == "ab");
    EXPECT_TRUE(text == std::string("ab"));
    EXPECT_TRUE(text == std::string_view("ab"));
    EXPECT_FALSE(text == "abc");
}

TEST(TextSlice, HoldsTheTextThatItShows) {
    TextSlice part;
    {
        const TextSlice whole(std::string("  a long line of a file that is gone  "));
        part = whole.slice(whole.view().substr(2, 11));
    }
    EXPECT_EQ(part, "a long line");
    EXPECT_EQ(part.slice(part.view().substr(2, 4)), std::string("long"));
    EXPECT_EQ(part.size(), 11U);
    EXPECT_TRUE(TextSlice().empty());
}

TEST(CountedRef, FreesItsValueWithTheLastHolder) {
    struct Counted {
        explicit Counted(int& count) : freed(&count) {}
        Counted(const Counted&) = delete;
        ~Counted() { ++*freed; }
        int* freed;
    };
    int freed = 0;
    auto first = CountedRef<const Counted>::make(freed);
    EXPECT_TRUE(first.isOnlyHolder());
    auto second = first;
    EXPECT_FALSE(first.isOnlyHolder());
    EXPECT_EQ(first, second);
    first = nullptr;
    EXPECT_FALSE(first);
    EXPECT_EQ(freed, 0);
    second = CountedRef<const Counted>::make(freed);
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(second->freed, &freed);
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

#ifdef __SANITIZE_ADDRESS__
// The checked build has to check what the headers define inline.
TEST(CheckedBuildDeathTest, SeesAReadOfFreedMemoryInAHeader) {
    auto* text = new SharedText("gone");
    delete text;
    EXPECT_DEATH((void)text->size(), "heap-use-after-free");
}

TEST(CheckedBuildDeathTest, SeesAnIndexAfterTheEndOfAView) {
    const TextSlice slice("ab");
    volatile std::size_t behind = 7;
    EXPECT_DEATH((void)slice.view()[behind], "Assertion");
}
#endif

} // namespace
} // namespace morquill
