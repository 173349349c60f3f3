#include "support/outcome.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <variant>

namespace morquill {
namespace {

Outcome<std::string> answer(bool works) {
    if (!works) {
        return Failure{"no answer"};
    }
    return std::string("forty-two");
}

/// Fails for the reason of another step.
Outcome<std::size_t> length(bool works) {
    const auto text = answer(works);
    if (!text) {
        return text.failure();
    }
    return text->size();
}

TEST(Outcome, HoldsAnAnswer) {
    const auto text = answer(true);
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, "forty-two");
    EXPECT_EQ(*length(true), 9U);
    EXPECT_THROW((void)text.error(), std::bad_variant_access);
}

TEST(Outcome, HoldsTheMessageOfAFailure) {
    const auto size = length(false);
    ASSERT_FALSE(size);
    EXPECT_EQ(size.error(), "no answer");
    EXPECT_THROW((void)*size, std::bad_variant_access);
}

TEST(Outcome, AnAnswerMayBeMovedOut) {
    Outcome<std::unique_ptr<int>> number(std::make_unique<int>(7));
    const std::unique_ptr<int> taken = std::move(*number);
    EXPECT_EQ(*taken, 7);
    EXPECT_EQ(*number, nullptr);
}

} // namespace
} // namespace morquill
