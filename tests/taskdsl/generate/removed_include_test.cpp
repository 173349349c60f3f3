#include "taskdsl/generate/removed_include.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

std::string warningOf(std::string_view line, const std::string& path) {
    std::string warning;
    warnHashInclude(line, path, [&warning](const std::string& text) { warning += text + "\n"; });
    return warning;
}

TEST(HashInclude, IsWarnedOfWithTheFileAndTheTarget) {
    // U+3002, the ideographic full stop
    const std::string stop = "\xE3\x80\x82\n";
    const std::string middle = "' uses the removed '#INCLUDE' syntax; replace it with '&INCLUDE'";
    EXPECT_EQ(warningOf("#INCLUDE a.mq", "dir/t.mq"),
              "context 't.mq" + middle + " (original path: a.mq)" + stop);
    EXPECT_EQ(warningOf("#include \"a b.mq\" # old", "t.mq"),
              "context 't.mq" + middle + " (original path: a b.mq)" + stop);
    EXPECT_EQ(warningOf("#INCLUDE", "t.mq"), "context 't.mq" + middle + stop);
    EXPECT_EQ(warningOf("#INCLUDE  # nothing", "t.mq"), "context 't.mq" + middle + stop);
    EXPECT_EQ(warningOf("#INCLUDE a", ""), "context '<memory>" + middle + " (original path: a)" + stop);
}

} // namespace
} // namespace morquill::taskdsl
