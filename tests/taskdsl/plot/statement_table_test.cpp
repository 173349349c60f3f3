#include "support/text.h"
#include "taskdsl/plot/statements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace morquill::taskdsl::plot {
namespace {

/// The kinds that take the statement, in the order of the enumeration; "every kind" for all of them.
std::string kindsOf(const StatementRow& row) {
    std::vector<std::string> names;
    for (int value = 0; value < 11; ++value) {
        const auto kind = static_cast<PlotKind>(value);
        const bool refused =
            std::any_of(row.refusals.begin(), row.refusals.end(),
                        [kind](const Refusal& refusal) { return contains(refusal.kinds, kind); });
        if (!refused) {
            names.emplace_back(plotKindName(kind));
        }
    }
    return names.size() == 11 ? "every kind" : join(names, " ");
}

TEST(StatementTable, SaysWhichKindTakesWhichWord) {
    const char* withX = "convergence curve spectrum scatter heatmap histogram bar errorbar";
    const std::pair<const char*, const char*> rows[] = {
        {"from axis legend title output format terminal size style theme missing", "every kind"},
        {"x", withX},
        {"y", "convergence curve spectrum scatter heatmap bar errorbar"},
        {"intensity mode broaden", "spectrum"},
        {"z", "heatmap"},
        {"yerr yerror error", "errorbar"},
        {"series", "convergence curve"},
        {"threshold", "convergence"},
        {"relative", "barrier curve"},
        {"sort", "curve spectrum bar errorbar"},
        {"range", "spectrum histogram"},
        {"bins density", "histogram"},
        {"limit", "bar"},
        {"diagonal fit metrics", "scatter"},
        {"point", "barrier"},
        {"column system", "frontier excited"},
        {"orbitals orbital spin", "frontier"},
        {"roots root states state arrow transition", "excited"},
        {"unit", "barrier frontier excited"},
    };
    for (const auto& [words, kinds] : rows) {
        for (const auto& word : splitTrimmed(words, ' ')) {
            const StatementRow* row = findStatement(word);
            ASSERT_NE(row, nullptr) << word;
            EXPECT_NE(row->read, nullptr) << word;
            EXPECT_EQ(kindsOf(*row), kinds) << word;
        }
    }
}

TEST(StatementTable, AnAliasIsTheRowOfItsWord) {
    for (const char* words : {"yerr yerror error", "column system", "orbitals orbital",
                              "roots root states state", "arrow transition"}) {
        const auto list = splitTrimmed(words, ' ');
        for (const auto& word : list) {
            EXPECT_EQ(findStatement(word), findStatement(list.front())) << word;
        }
    }
    EXPECT_NE(findStatement("x"), findStatement("y"));
    EXPECT_EQ(findStatement("intensity")->read, findStatement("y")->read);
}

TEST(StatementTable, KnowsNoOtherWord) {
    for (const char* word : {"", " ", "X", "label", "value", "yerr yerror", "xx", "serie", "units", "\xff"}) {
        EXPECT_EQ(findStatement(word), nullptr) << word;
    }
}

TEST(StatementTable, APointTakesTwoWordsMore) {
    ASSERT_NE(findPointStatement("label"), nullptr);
    ASSERT_NE(findPointStatement("value"), nullptr);
    EXPECT_EQ(findPointStatement("label")->read, &readPointLabel);
    EXPECT_EQ(findPointStatement("value")->read, &readPointValue);
    for (const char* word : {"", "point", "unit", "LABEL"}) {
        EXPECT_EQ(findPointStatement(word), nullptr) << word;
    }
}

TEST(StatementTable, ANamedSeriesIsReadWholeBeforeItIsRefused) {
    EXPECT_EQ(findStatement("series")->refused, RefusalTime::afterReading);
    EXPECT_EQ(findStatement("threshold")->refused, RefusalTime::beforeReading);
}

} // namespace
} // namespace morquill::taskdsl::plot
