#include "taskdsl/base/escape.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(Escape, WritesTheFiveEscapesAndNothingElse) {
    std::string out = "x ";
    appendQuoted(out, "a\tb\nc\rd\"e\\");
    EXPECT_EQ(out, R"(x "a\tb\nc\rd\"e\\")");
    out.clear();
    appendQuoted(out, "");
    EXPECT_EQ(out, R"("")");
    out.clear();
    appendQuoted(out, "it's\v\xC3\xA9\x01");
    EXPECT_EQ(out, "\"it's\v\xC3\xA9\x01\"");
}

TEST(Escape, ReadsWhatItWrites) {
    EXPECT_EQ(escapedByte('t'), '\t');
    EXPECT_EQ(escapedByte('n'), '\n');
    EXPECT_EQ(escapedByte('r'), '\r');
    EXPECT_EQ(escapedByte('"'), '"');
    EXPECT_EQ(escapedByte('\\'), '\\');
    for (const char letter : {'a', 'v', '\'', '0', '\0', '\n'}) {
        EXPECT_EQ(escapedByte(letter), std::nullopt) << letter;
    }
}

} // namespace
} // namespace morquill::taskdsl
