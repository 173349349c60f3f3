#include "console/messages.h"

#include "console/console.h"
#include "fixtures/console_fixtures.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <unistd.h>

namespace morquill::console {
namespace {

std::string sentOut(const std::function<void()>& print) {
    return testing::throughPipe({STDOUT_FILENO}, [&] {
        EXPECT_EQ(testing::throughPipe({STDERR_FILENO}, print), "");
        flushOut();
    });
}

std::string sentToErr(const std::function<void()>& report) {
    return testing::throughPipe({STDERR_FILENO},
                                [&] { EXPECT_EQ(testing::throughPipe({STDOUT_FILENO}, report), ""); });
}

TEST(Messages, EachKindHasItsTag) {
    const std::pair<MessageKind, std::string_view> rows[] = {
        {MessageKind::note, "[mqkit]"},
        {MessageKind::skip, "[mqkit][SKIP]"},
        {MessageKind::dryRun, "[mqkit][DRY-RUN]"},
        {MessageKind::warning, "[mqkit][WARN]"},
        {MessageKind::error, "[mqkit][ERROR]"},
    };
    for (const auto& [kind, tag] : rows) {
        EXPECT_EQ(messageTag(kind), tag);
        EXPECT_EQ(tagged(kind, "a b"), std::string(tag) + " a b");
        EXPECT_EQ(sentOut([kind = kind] { printMessage(kind, "a b"); }), std::string(tag) + " a b\n");
    }
    EXPECT_EQ(stepKind(RunMode::dryRun), MessageKind::dryRun);
    EXPECT_EQ(stepKind(RunMode::apply), MessageKind::note);
}

TEST(Messages, NotesSkipsAndQuestionsGoToStandardOutput) {
    EXPECT_EQ(sentOut([] { printLine("  x"); }), "  x\n");
    EXPECT_EQ(sentOut([] { printLine(); }), "\n");
    EXPECT_EQ(sentOut([] { printNote("done"); }), "[mqkit] done\n");
    EXPECT_EQ(sentOut([] { printSkip("a / $b"); }), "[mqkit][SKIP] a / $b\n");
    EXPECT_EQ(sentOut([] { printQuestion("sure? "); }), "[mqkit] sure? ");
}

TEST(Messages, WarningsAndErrorsGoToStandardError) {
    EXPECT_EQ(sentToErr([] { printErrorLine("  x"); }), "  x\n");
    EXPECT_EQ(sentToErr([] { printErrorLine(); }), "\n");
    EXPECT_EQ(sentToErr([] { reportWarning("odd"); }), "[mqkit][WARN] odd\n");
    EXPECT_EQ(sentToErr([] { reportError("wrong"); }), "[mqkit][ERROR] wrong\n");
    EXPECT_EQ(sentToErr([] { reportError(ErrorTag::none, "wrong"); }), "wrong\n");
    EXPECT_EQ(sentToErr([] { reportError(ErrorTag::plain, "wrong"); }), "[mqkit][ERROR] wrong\n");
    EXPECT_EQ(sentToErr([] { reportError(ErrorTag::coloured, "wrong"); }), "[mqkit][ERROR] wrong\n");
    EXPECT_EQ(sentToErr([] { reportErrorInPieces({"a", "", " (", "b", ")"}); }), "[mqkit][ERROR] a (b)\n");
    EXPECT_EQ(sentToErr([] { reportErrorInPieces({}); }), "[mqkit][ERROR] \n");
}

TEST(Messages, OnlyTheColouredTagIsRedOnATerminal) {
    const testing::ScopedEnv color("NO_COLOR", std::nullopt);
    const testing::ScopedEnv terminal("TERM", "xterm");
    forgetColorDecision();
    EXPECT_EQ(testing::throughTerminal({STDERR_FILENO},
                                       [] {
                                           reportError(ErrorTag::coloured, "wrong");
                                           reportError("wrong");
                                           reportWarning("odd");
                                       }),
              "\x1b[1m\x1b[31m[mqkit][ERROR]\x1b[0m wrong\n[mqkit][ERROR] wrong\n[mqkit][WARN] odd\n");
}

TEST(Messages, AnyBytesGoOutAndWhatWasPrintedBeforeComesFirst) {
    const std::string bytes("a\0\xff", 3);
    EXPECT_EQ(sentOut([&] { printNote(bytes); }), "[mqkit] " + bytes + "\n");
    EXPECT_EQ(sentToErr([&] { reportErrorInPieces({bytes}); }), "[mqkit][ERROR] " + bytes + "\n");
    EXPECT_EQ(testing::throughPipe({STDOUT_FILENO, STDERR_FILENO},
                                   [] {
                                       printNote("one");
                                       reportWarning("two");
                                       printSkip("three");
                                       reportErrorInPieces({"four"});
                                   }),
              "[mqkit] one\n[mqkit][WARN] two\n[mqkit][SKIP] three\n[mqkit][ERROR] four\n");
}

} // namespace
} // namespace morquill::console
