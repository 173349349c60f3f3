#include "taskdsl/base/foreach_header.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(ForeachHeaders, TwoFormsAreValid) {
    const auto named = parseForeachHeader("@foreach  a.b-c_1 ");
    ASSERT_TRUE(named);
    EXPECT_FALSE(named->isOptional);
    EXPECT_EQ(named->source, std::nullopt);
    EXPECT_EQ(named->name, "a.b-c_1");
    const auto sourced = parseForeachHeader("@foreach?\tx in  series(1 - 2) ");
    ASSERT_TRUE(sourced);
    EXPECT_TRUE(sourced->isOptional);
    EXPECT_EQ(sourced->name, "x");
    EXPECT_EQ(sourced->source, "series(1 - 2)");
    EXPECT_EQ(parseForeachHeader("@foreach in").value().name, "in");
}

TEST(ForeachHeaders, AnythingElseIsNot) {
    for (const char* text :
         {"@foreach", "@foreach ", "@foreach?", "@foreachx", "@foreach 1x", "@foreach x in", "@foreach x y",
          "@foreach x,y", "@foreach x infinity", "@foreach ?x", "foreach x"}) {
        EXPECT_FALSE(parseForeachHeader(text)) << text;
    }
}

} // namespace
} // namespace morquill::taskdsl
