#include "taskdsl/task/directive_reader.h"

#include "fixtures/test_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

using ::testing::ElementsAre;

/// A reader at the first of some lines, with its task and what it warns of.
struct Reading {
    explicit Reading(std::string_view text, std::string_view value = "")
        : lines(linesOf(text)), written(value) {}

    std::vector<SourceLine> lines;
    std::string written;
    TaskInfo task{"opt"};
    std::vector<std::string> warnings;
    WarningSink sink = [this](const std::string& text) { warnings.push_back(text); };
    DirectiveReader reader{task, lines, 0, written, {sink}};
};

TEST(WrittenDirectives, EndTheirKeywordAtABlank) {
    const auto plain = splitDirective("%control  totcore 8");
    EXPECT_EQ(plain.keyword, "control");
    EXPECT_EQ(plain.value, "totcore 8");
    EXPECT_EQ(splitDirective("%body").keyword, "body");
    EXPECT_EQ(splitDirective("%body").value, "");
    EXPECT_EQ(splitDirective("%body\tx y").keyword, "body\tx"); // a tab belongs to the keyword
    EXPECT_EQ(splitDirective("body x").keyword, "");
}

TEST(DirectiveReader, TakesTheLinesOfItsBlock) {
    Reading block("%control\n  totcore 8 # cores\n\n  totmem 4\n%keywords x\n");
    EXPECT_EQ(block.reader.nextLine(), "totcore 8");
    EXPECT_EQ(formatSpan(block.reader.span()), "t.mq:2:3-2:20");
    EXPECT_EQ(formatSpan(block.reader.headerSpan()), "t.mq:1:1-1:9");
    EXPECT_EQ(block.reader.nextLine(), "");
    EXPECT_EQ(block.reader.nextLine(), "totmem 4");
    EXPECT_EQ(block.reader.position(), 3U);
    EXPECT_EQ(block.reader.nextLine(), std::nullopt);
    EXPECT_EQ(block.reader.position(), 3U) << "no move where the block ends";
    EXPECT_EQ(block.reader.nextLineOfAnyKind(), "%keywords x");
    EXPECT_EQ(block.reader.nextLineOfAnyKind(), std::nullopt);

    Reading gaps("%control\n\n# note\n  a\n");
    EXPECT_EQ(gaps.reader.nextFilledLine(), "a");
    EXPECT_EQ(gaps.reader.nextFilledLine(), std::nullopt);
}

TEST(DirectiveReader, ABoundaryEndsTheBlockForEveryReader) {
    Reading block("%control\nx\n");
    block.lines[1].directiveBoundary = true;
    EXPECT_EQ(block.reader.nextLine(), std::nullopt);
    EXPECT_EQ(block.reader.nextLineOfAnyKind(), std::nullopt);
    EXPECT_EQ(block.reader.readTextBlock(), std::nullopt);
}

TEST(DirectiveReader, AHeredocIsRawUpToItsTerminator) {
    Reading text("%body << END\n  a # kept\n%b\n  END  \nbehind\n", "<< END");
    EXPECT_TRUE(text.reader.opensHeredoc());
    EXPECT_EQ(text.reader.heredocTerminator(), "END");
    const HeredocText read = text.reader.readHeredoc();
    EXPECT_TRUE(read.isClosed);
    EXPECT_EQ(read.text, "  a # kept\n%b");
    EXPECT_EQ(text.reader.position(), 3U);

    Reading open("%body <<\na\n", "<<");
    EXPECT_EQ(open.reader.heredocTerminator(), "EOF");
    const HeredocText rest = open.reader.readHeredoc();
    EXPECT_FALSE(rest.isClosed);
    EXPECT_EQ(rest.text, "a");
    EXPECT_EQ(open.reader.position(), 1U);
    EXPECT_FALSE(Reading("%body x", "x").reader.opensHeredoc());
}

TEST(DirectiveReader, ATextBlockEndsAtStructureUnlessTheLineIsVerbatim) {
    Reading text("%param\n  a # kept\n\n%b\n");
    EXPECT_EQ(text.reader.readTextBlock(), "  a # kept\n");
    EXPECT_EQ(text.reader.position(), 2U);
    EXPECT_EQ(text.reader.readTextBlock(), std::nullopt);
    text.lines[3].verbatim = true;
    EXPECT_EQ(text.reader.readTextBlock(), "%b");
}

TEST(DirectiveReader, WarningsAndFaultsNameTheTask) {
    Reading block("%control\n x\n");
    (void)block.reader.nextLine();
    block.reader.warn("has x.");
    EXPECT_THAT(block.warnings, ElementsAre("task 'opt' has x."));
    EXPECT_EQ(messageOf([&] { block.reader.fail("has x."); }), "task 'opt' has x.");
    EXPECT_EQ(messageOf([&] { block.reader.failHere("has x."); }), "t.mq:2:2-2:3: error: task 'opt' has x.");
    block.task.filePath = "u.mq"; // conditions stand in the file of their task
    EXPECT_EQ(formatSpan(block.reader.conditionSpan()), "u.mq:2:2-2:3");
}

} // namespace
} // namespace morquill::taskdsl
