#include "console/help_text.h"

#include "console/console.h"
#include "fixtures/console_fixtures.h"

#include <gtest/gtest.h>

namespace morquill::console {
namespace {

constexpr HelpLine lines[] = {
    {HelpStyle::heading, "Usage:"},
    {HelpStyle::plain, "  `@ fmt` writes, see @."},
    {HelpStyle::plain, ""},
    {HelpStyle::plain, "`-o`, `--out`"},
    {HelpStyle::olderHeading, "Older forms:"},
};

void print() {
    printHelpLines(lines, "/opt/bin/mqkit");
    flushOut();
}

TEST(HelpText, WithoutColourTheMarksAreGoneAndTheProgramIsNamed) {
    forgetColorDecision();
    EXPECT_EQ(testing::throughPipe({STDOUT_FILENO}, print), "Usage:\n"
                                                            "  mqkit fmt writes, see mqkit.\n"
                                                            "\n"
                                                            "-o, --out\n"
                                                            "Older forms:\n");
}

TEST(HelpText, OnATerminalTextBetweenMarksIsGreenAndHeadingsAreBold) {
    const testing::ScopedEnv noColor("NO_COLOR", std::nullopt);
    const testing::ScopedEnv term("TERM", "xterm");
    forgetColorDecision();
    EXPECT_EQ(testing::throughTerminal({STDOUT_FILENO}, print),
              "\033[1m\033[36mUsage:\033[0m\n"
              "  \033[32mmqkit fmt\033[0m writes, see mqkit.\n"
              "\n"
              "\033[32m-o\033[0m, \033[32m--out\033[0m\n"
              "\033[1m\033[33mOlder forms:\033[0m\n");
}

TEST(HelpText, NoLinesAreNoOutput) {
    EXPECT_EQ(testing::throughPipe({STDOUT_FILENO},
                                   [] {
                                       printHelpLines({}, "mqkit");
                                       flushOut();
                                   }),
              "");
}

} // namespace
} // namespace morquill::console
