#include "support/json.h"

#include <gtest/gtest.h>

#include <string_view>

namespace morquill {
namespace {

TEST(Json, EscapesControlBytesAndLeavesTheRest) {
    EXPECT_EQ(jsonEscape("\"\\\b\f\n\r\t"), R"(\"\\\b\f\n\r\t)");
    EXPECT_EQ(jsonEscape(std::string_view("\0\x1f\x7f\xff", 4)), "\\u0000\\u001f\x7f\xff");
    EXPECT_EQ(jsonString("a/b"), "\"a/b\"");
}

} // namespace
} // namespace morquill
