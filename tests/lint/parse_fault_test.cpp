#include "lint/parse_fault.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::lint {
namespace {

struct FaultRow {
    std::string_view text;
    std::string_view file;
    std::string_view span; ///< "-" for none
    std::string_view message;
};

TEST(LintParseFault, TakesAMessageApart) {
    const std::vector<FaultRow> rows{
        {"a.mq:2:1-2:5: error: what", "a.mq", "a.mq:2:1-2:5", "what"},
        {"a.mq:2:1: error: what", "a.mq", "a.mq:2:1", "what"},
        {"a.mq:2:1:error:what", "a.mq", "a.mq:2:1", "what"},
        {"a.mq:2:1: \t\n error: \n what ", "a.mq", "a.mq:2:1", "what "},
        {"a.mq:2:1: error:", "a.mq", "a.mq:2:1", ""},
        {":2:1: error: what", "", "2:1", "what"},
        {"a:1:2:3: error: x", "a:1", "a:1:2:3", "x"},
        {"a:5:6-7:8:9: error: x", "a:5:6-7", "a:5:6-7:8:9", "x"},
        {"a:5:6-7:8: error: x", "a", "a:5:6-7:8", "x"},
        // The last place counts.
        {"a:1:2: error: b:3:4: error: c", "a:1:2: error: b", "a:1:2: error: b:3:4", "c"},
        {"a:1:2: error: error: c", "a", "a:1:2", "error: c"},
        {"a:1:2: error:3:4: error: c", "a:1:2: error", "a:1:2: error:3:4", "c"},
        {"a:99999999999:2: error: c", "a", "a:2147483647:2-2147483647:2", "c"},
        {"a:99999999999:2-99999999999:3: error: c", "a", "a:2147483647:2-2147483647:3", "c"},
        {"a:0:0: error: c", "a", "a", "c"},
    };
    for (const auto& row : rows) {
        const auto parts = splitParseFault(row.text);
        EXPECT_EQ(parts.file, row.file) << row.text;
        EXPECT_EQ(formatSpan(parts.span),
                  row.span == "a:2147483647:2-2147483647:2" ? "a:2147483647:2" : row.span);
        EXPECT_EQ(parts.message, row.message) << row.text;
    }
}

TEST(LintParseFault, AnyOtherTextIsAllMessage) {
    for (const std::string_view text :
         {"", "error: x", "could not open file: a", "2:1: error: x", "a:2: error: x", "a:2:1 error: x",
          "a:2:x: error: y", "a:-2:1: error: y", "a:2:1-3: error: y", "a:2-3:4: error: y",
          "a:2:1-:4: error: y", "a:2:1: error; x", "a:2:1: Error: x", "a:2: 1: error: x",
          "a\nb:2:1: error: x", "a:2:1: error: x\ny", "a:2:1: error: x\r", "a:2:1: the error: x"}) {
        const auto parts = splitParseFault(text);
        EXPECT_EQ(parts.file, "") << text;
        EXPECT_FALSE(isValidSpan(parts.span)) << text;
        EXPECT_EQ(parts.message, text);
    }
}

TEST(LintParseFault, TakesTextsOfMegabytes) {
    const std::string huge(1u << 20u, 'x');
    EXPECT_EQ(splitParseFault(huge + ":1:2: error: " + huge).message.size(), huge.size());
    std::string many = "\n";
    for (int i = 0; i < 50'000; ++i) {
        many += ":1:2: error: ";
    }
    EXPECT_EQ(splitParseFault(many).message, many);
    EXPECT_EQ(splitParseFault(huge + std::string(1u << 20u, '\n') + "error:").file, "");
}

} // namespace
} // namespace morquill::lint
