#include "taskdsl/base/source_line.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(SourceLine, KnowsItsKindAndItsCleanText) {
    struct Row {
        std::string_view text;
        LineKind kind;
        std::string_view clean;
    };
    const Row rows[] = {
        {"", LineKind::empty, ""},
        {" \t\r", LineKind::empty, ""},
        {"  # %note", LineKind::empty, ""},
        {"\t#include a.mq", LineKind::removedInclude, ""},
        {"  $opt  # first\r", LineKind::taskHeader, "$opt"},
        {"  %keywords 'a # b' # c", LineKind::directive, "%keywords 'a # b'"},
        {" x#y ", LineKind::text, "x#y"},
    };
    for (const auto& [text, kind, clean] : rows) {
        const SourceLine line(std::string(text), "t.mq", 3);
        EXPECT_EQ(line.kind(), kind) << text;
        EXPECT_EQ(line.clean(), clean) << text;
        EXPECT_EQ(line.text(), text);
    }
}

TEST(SourceLine, KeepsItsCleanTextWhenItMoves) {
    // Short texts lie inside the line, long ones outside.
    for (const std::string& word : {std::string("ab"), std::string(100, 'x')}) {
        SourceLine line("  %" + word + " # c", "t.mq", 3);
        const SourceLine copy = line;
        const SourceLine moved = std::move(line);
        EXPECT_EQ(copy.clean(), "%" + word);
        EXPECT_EQ(moved.clean(), "%" + word);
        EXPECT_EQ(moved.kind(), LineKind::directive);
    }
}

TEST(SourceLine, IsClassifiedAnewByASubstitution) {
    SourceLine line("  [what] x # [what]", "t.mq", 3);
    EXPECT_EQ(line.kind(), LineKind::text);
    line.substitute({{"other", "%"}});
    EXPECT_EQ(line.text(), "  [what] x # [what]");
    line.substitute({{"what", "%body"}});
    EXPECT_EQ(line.text(), "  %body x # %body");
    EXPECT_EQ(line.kind(), LineKind::directive);
    EXPECT_EQ(line.clean(), "%body x");
}

TEST(SourceLine, LiesWhereItsTextIs) {
    EXPECT_EQ(formatSpan(SourceLine("  a b ", "t.mq", 3).span()), "t.mq:3:3-3:7");
}

TEST(MakeSourceLines, CountsFromOne) {
    const auto lines = makeSourceLines("$a\n\n%b", "t.mq");
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].lineNumber, 1U);
    EXPECT_EQ(lines[2].lineNumber, 3U);
    EXPECT_EQ(lines[2].text(), "%b");
    EXPECT_EQ(lines[2].originPath, "t.mq");
    EXPECT_FALSE(lines[2].verbatim);
    EXPECT_FALSE(lines[2].directiveBoundary);
    EXPECT_TRUE(makeSourceLines("", "t.mq").empty());
}

} // namespace
} // namespace morquill::taskdsl
