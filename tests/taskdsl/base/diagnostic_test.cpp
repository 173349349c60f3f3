#include "taskdsl/base/diagnostic.h"

#include <gtest/gtest.h>

#include <string>

namespace morquill::taskdsl {
namespace {

TEST(DiagnosticError, PutsAKnownPlaceInFrontOfItsMessage) {
    struct Row {
        SourceSpan span;
        std::string whole;
    };
    const Row rows[] = {
        {{"a.mq", 3, 2, 3, 9}, "a.mq:3:2-3:9: error: no such task"},
        {{"a.mq", 3, 2, 5, 1}, "a.mq:3:2-5:1: error: no such task"},
        {{"a.mq", 3, 2, 3, 2}, "a.mq:3:2: error: no such task"},
        {{"", 3, 2, 3, 9}, "3:2-3:9: error: no such task"},
        {{}, "no such task"},
        {{"a.mq", 0, 0, 0, 0}, "no such task"}, // a file alone is no place
        {{"a.mq", 3, 2, 2, 9}, "no such task"}, // ends before it begins
    };
    for (const auto& [span, whole] : rows) {
        const DiagnosticError error(span, "no such task");
        EXPECT_EQ(error.what(), whole);
        EXPECT_EQ(error.message(), "no such task");
        EXPECT_EQ(error.span(), span);
    }
}

TEST(DiagnosticError, AMessageThatNamesItsPlaceStandsAlone) {
    const auto error = DiagnosticError::namingPlace({"a.mq", 3, 2, 3, 9}, "a.mq:3: no such task");
    EXPECT_STREQ(error.what(), "a.mq:3: no such task");
    EXPECT_EQ(error.message(), "a.mq:3: no such task");
    EXPECT_EQ(formatSpan(error.span()), "a.mq:3:2-3:9");
    EXPECT_TRUE(error.messageNamesPlace());
    EXPECT_FALSE(DiagnosticError({"a.mq", 3, 2, 3, 9}, "no such task").messageNamesPlace());
    EXPECT_FALSE(DiagnosticError("no such task").messageNamesPlace());
    EXPECT_FALSE(DiagnosticError::namingPlace({}, "no such task").messageNamesPlace());
}

TEST(DiagnosticError, WithoutAPlaceIsItsMessage) {
    const DiagnosticError error("a: b\nc");
    EXPECT_STREQ(error.what(), "a: b\nc");
    EXPECT_EQ(error.message(), "a: b\nc");
    EXPECT_EQ(error.span(), SourceSpan{});
}

TEST(DiagnosticError, IsCaughtAsARuntimeErrorWithItsWholeMessage) {
    try {
        throw DiagnosticError({"a.mq", 1, 1, 1, 4}, "");
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "a.mq:1:1-1:4: error: ");
        return;
    }
    FAIL();
}

TEST(DiagnosticError, ItsTextHoldsEveryByteOfTheInput) {
    const std::string message("no '\0' here", 11);
    const DiagnosticError bare(message);
    EXPECT_EQ(bare.text(), message);
    EXPECT_EQ(bare.message(), message);
    const DiagnosticError placed({SharedText("a.mq"), 2, 3, 2, 7}, message);
    EXPECT_EQ(placed.text(), "a.mq:2:3-2:7: error: " + message);
    EXPECT_EQ(wholeText(placed), placed.text());
    EXPECT_EQ(wholeText(std::runtime_error("other")), "other");
}

} // namespace
} // namespace morquill::taskdsl
