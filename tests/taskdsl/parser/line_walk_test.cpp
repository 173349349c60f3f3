#include "taskdsl/parser/line_walk.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

/// What a walk over the lines of a text makes of an empty document.
struct Walked {
    TaskDocument document;
    std::vector<std::string> includes; ///< target and line
    std::vector<std::string> warnings;
};

Walked walk(std::string_view text, const ValueMap& defines = {}) {
    Walked walked;
    walked.document.defines = defines;
    ParseContext run({.warnings = [&walked](const std::string& line) { walked.warnings.push_back(line); }});
    walkLines(linesOf(text), walked.document, run,
              [&walked](const IncludeDirective& include, const SourceLine& line) {
                  walked.includes.push_back(include.target + " " + std::to_string(line.lineNumber));
              });
    return walked;
}

TEST(WalkLines, MakesTasksOfHeadersAndTheirDirectives) {
    const auto walked =
        walk("free text\n%lost\n$a # one\n%keywords hf\nfree text\n\n$\"b [k]\"\n", {{"k", "v"}});
    const auto& tasks = walked.document.tasks;
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_EQ(tasks[0].name, "a");
    EXPECT_FALSE(tasks[0].quoted);
    EXPECT_EQ(tasks[0].keywords, "hf");
    EXPECT_EQ(formatSpan(tasks[0].headerSpan), "t.mq:3:1-3:9");
    ASSERT_EQ(tasks[0].directives.size(), 1U);
    EXPECT_EQ(formatSpan(tasks[0].directives[0].span), "t.mq:4:1-4:13");
    EXPECT_EQ(tasks[1].name, "b v");
    EXPECT_TRUE(tasks[1].quoted);
}

TEST(WalkLines, CountsTasksAndDerivesTogether) {
    const auto walked =
        walk("$a\n@derive d\nemit e = 1\n@end\n@plot barrier p\npoint x value 1\npoint y value 2\n"
             "@end\n$b\n");
    EXPECT_EQ(walked.document.tasks[0].documentOrder, 0U);
    ASSERT_EQ(walked.document.derives.size(), 1U);
    EXPECT_EQ(walked.document.derives[0].documentOrder, 1U);
    EXPECT_EQ(walked.document.tasks[1].documentOrder, 2U);
    EXPECT_EQ(walked.document.plots.size(), 1U);
}

TEST(WalkLines, IncludesEndATaskAndGoToTheHandler) {
    const auto walked = walk("&INCLUDE a.mq\n$t\n%keywords hf\n&INCLUDE b.mq\n");
    EXPECT_THAT(walked.includes, ElementsAre("a.mq 1", "b.mq 4"));
}

TEST(WalkLines, RemovedIncludesWarnInsideAndOutsideATask) {
    const auto walked = walk("#INCLUDE a.mq\n$t\n#include b.mq\n");
    ASSERT_EQ(walked.warnings.size(), 2U);
    EXPECT_THAT(walked.warnings[0], testing::HasSubstr("(original path: a.mq)"));
    EXPECT_THAT(walked.warnings[1], testing::HasSubstr("(original path: b.mq)"));
}

TEST(WalkLines, AStrayEndIsAFault) {
    EXPECT_EQ(messageOf([] { (void)walk("$a\n@end\n"); }),
              "unexpected @end without matching @plot or @derive");
}

} // namespace
} // namespace morquill::taskdsl
