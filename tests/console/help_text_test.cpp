#include "console/help_text.h"

#include "console/console.h"
#include "fixtures/console_fixtures.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace morquill::console {
namespace {

constexpr std::string_view helpText = R"(# Usage:
  `@ run <file>` with @ and `@`

## Older forms:
  @foreach stays, a@b does not
)";

void show() {
    printHelp(helpText, "/opt/bin/tool");
    flushOut();
}

TEST(HelpText, WithoutColourTheMarksAreGone) {
    EXPECT_EQ(testing::throughPipe({STDOUT_FILENO}, show),
              "Usage:\n  tool run <file> with tool and tool\n\nOlder forms:\n"
              "  @foreach stays, a@b does not\n");
}

TEST(HelpText, OnATerminalHeadingsAreBoldAndMarkedTextIsGreen) {
    const testing::ScopedEnv color("NO_COLOR", std::nullopt);
    const testing::ScopedEnv terminal("TERM", "xterm");
    forgetColorDecision();
    EXPECT_EQ(testing::throughTerminal({STDOUT_FILENO}, show),
              "\033[1m\033[36mUsage:\033[0m\n"
              "  \033[32mtool run <file>\033[0m with tool and \033[32mtool\033[0m\n\n"
              "\033[1m\033[33mOlder forms:\033[0m\n"
              "  @foreach stays, a@b does not\n");
}

} // namespace
} // namespace morquill::console
