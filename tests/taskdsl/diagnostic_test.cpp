#include "taskdsl/diagnostic.h"

#include <gtest/gtest.h>

#include <string>

namespace morquill::taskdsl {
namespace {

TEST(Diagnostic, ItsTextHoldsEveryByteOfTheInput) {
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
