#include "templates/library/supersequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace morquill::templates {
namespace {

using Lines = std::vector<std::string_view>;
using ::testing::ElementsAre;

/// The definition: the whole table of lengths, and the walk back through it.
Lines fromWholeTable(const Lines& a, const Lines& b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                d[i][j] = i + j;
            } else {
                d[i][j] = 1 + (a[i - 1] == b[j - 1] ? d[i - 1][j - 1] : std::min(d[i - 1][j], d[i][j - 1]));
            }
        }
    }
    Lines taken;
    std::size_t i = a.size();
    std::size_t j = b.size();
    while (i > 0 || j > 0) {
        if (i > 0 && j > 0 && a[i - 1] == b[j - 1]) {
            taken.push_back(a[--i]);
            --j;
        } else if (i == 0 || (j > 0 && d[i - 1][j] >= d[i][j - 1])) {
            taken.push_back(b[--j]);
        } else {
            taken.push_back(a[--i]);
        }
    }
    std::reverse(taken.begin(), taken.end());
    return taken;
}

TEST(Supersequence, KeepsBothOrdersAndTakesCommonLinesOnce) {
    EXPECT_THAT(shortestCommonSupersequence({"a", "b", "c"}, {"a", "x", "c"}),
                ElementsAre("a", "b", "x", "c"));
    EXPECT_THAT(shortestCommonSupersequence({"a", "b"}, {"b", "c"}), ElementsAre("a", "b", "c"));
    EXPECT_THAT(shortestCommonSupersequence({"a", "a"}, {"a"}), ElementsAre("a", "a"));
}

TEST(Supersequence, EqualAndEmptyListsAddNothing) {
    EXPECT_THAT(shortestCommonSupersequence({}, {}), ElementsAre());
    EXPECT_THAT(shortestCommonSupersequence({"a", "b"}, {"a", "b"}), ElementsAre("a", "b"));
    EXPECT_THAT(shortestCommonSupersequence({}, {"a", "b"}), ElementsAre("a", "b"));
    EXPECT_THAT(shortestCommonSupersequence({"a", "b"}, {}), ElementsAre("a", "b"));
}

TEST(Supersequence, EqualsTheResultOfTheWholeTable) {
    static constexpr std::string_view alphabet[] = {"a", "b", "c", "d", "e", "f", "g", "h"};
    std::uint32_t seed = 1;
    const auto random = [&](std::uint32_t below) {
        seed = seed * 1664525U + 1013904223U;
        return (seed >> 16U) % below;
    };
    const auto list = [&](std::uint32_t longest, std::uint32_t letters) {
        Lines lines(random(longest + 1));
        for (auto& line : lines) {
            line = alphabet[random(letters)];
        }
        return lines;
    };
    for (int round = 0; round < 400; ++round) {
        // Few letters make many ties and frequent lines; long lists cross word and window borders.
        const auto longest = round % 10 == 0 ? 200U : 12U;
        const auto letters = 1 + random(8);
        const auto a = list(longest, letters);
        const auto b = list(longest, letters);
        ASSERT_EQ(shortestCommonSupersequence(a, b), fromWholeTable(a, b)) << "round " << round;
    }
}

TEST(Supersequence, LongListsWithoutCommonEndsAreJoined) {
    std::vector<std::string> texts;
    for (int i = 0; i < 3000; ++i) {
        texts.push_back("command " + std::to_string(i));
    }
    Lines a{"only in a"};
    Lines b;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % 3 != 0) {
            a.emplace_back(texts[i]);
        }
        if (i % 3 != 1) {
            b.emplace_back(texts[i]);
        }
    }
    b.emplace_back("only in b");
    const auto joined = shortestCommonSupersequence(a, b);
    EXPECT_EQ(joined.size(), texts.size() + 2);
    EXPECT_EQ(joined.front(), "only in a");
    EXPECT_EQ(joined.back(), "only in b");
}

} // namespace
} // namespace morquill::templates
