#include "support/word_table.h"

#include <gtest/gtest.h>

namespace morquill {
namespace {

enum class Colour { red, green, blue };

constexpr auto colours = wordTable<Colour>({
    {"red", Colour::red},
    {"scarlet", Colour::red},
    {"green", Colour::green},
    {"greenish", Colour::green},
});

TEST(WordTable, FindsWordsAndAliasesInAnyCase) {
    EXPECT_EQ(colours.find("red"), Colour::red);
    EXPECT_EQ(colours.find("Scarlet"), Colour::red);
    EXPECT_EQ(colours.find("GREEN"), Colour::green);
    EXPECT_EQ(colours.find("blue"), std::nullopt);
    EXPECT_EQ(colours.find("re"), std::nullopt);
    EXPECT_EQ(colours.find(""), std::nullopt);
}

TEST(WordTable, FindsExactWordsAsTheyAreWritten) {
    EXPECT_EQ(colours.findExact("scarlet"), Colour::red);
    EXPECT_EQ(colours.findExact("Scarlet"), std::nullopt);
}

TEST(WordTable, TheFirstWordOfAValueIsItsName) {
    EXPECT_EQ(colours.wordOf(Colour::red), "red");
    EXPECT_EQ(colours.wordOf(Colour::green), "green");
    EXPECT_EQ(colours.wordOf(Colour::blue), std::nullopt);
    EXPECT_EQ(colours.nameOf(Colour::green), "green");
    EXPECT_EQ(colours.nameOf(Colour::blue), "red");
}

TEST(WordTable, TheLongestWordAtTheFrontOfATextCounts) {
    ASSERT_NE(colours.atFront("Greenish-grey"), nullptr);
    EXPECT_EQ(colours.atFront("Greenish-grey")->word, "greenish");
    ASSERT_NE(colours.atFront("greeni"), nullptr);
    EXPECT_EQ(colours.atFront("greeni")->word, "green");
    EXPECT_EQ(colours.atFront("gree"), nullptr);
    EXPECT_EQ(colours.atFront(""), nullptr);
}

TEST(WordTable, ShowsItsRowsInTheirOrder) {
    std::string words;
    for (const auto& row : colours) {
        words += std::string(row.word) + " ";
    }
    EXPECT_EQ(words, "red scarlet green greenish ");
}

} // namespace
} // namespace morquill
