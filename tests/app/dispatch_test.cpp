#include "app/dispatch.h"

#include "console/console.h"
#include "fixtures/console_fixtures.h"
#include "fixtures/golden.h"
#include "fixtures/scratch_tree.h"
#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::app {
namespace {

using console::testing::throughPipe;

/// Runs a command line through real pipes, as `main` would.
Output dispatch(std::vector<std::string> arguments) {
    Arguments words(std::move(arguments));
    Output output;
    output.out = throughPipe({STDOUT_FILENO}, [&] {
        output.err = throughPipe({STDERR_FILENO},
                                 [&] { output.status = dispatchCommand(words.argc(), words.argv()); });
    });
    return output;
}

/// The overview for a program of that name.
std::string topLevelHelp(const std::string& program) {
    return replaceAll(golden::plainHelp("overview"), "mqkit", program);
}

TEST(Dispatch, WithoutACommandTheHelpIsShown) {
    struct Row {
        std::vector<std::string> arguments;
        int status;
        std::string error; // after the tag; empty when there is no message
    };
    const Row rows[] = {
        {{"mqkit"}, 1, ""},
        {{"mqkit", "help"}, 0, ""},
        {{"mqkit", "--HELP"}, 0, ""},
        {{"mqkit", "-H"}, 0, ""},
        {{"mqkit", "help", "nothing", "fmt"}, 1, " unknown help topic: nothing\n"},
        {{"mqkit", "help", ""}, 1, " unknown help topic: \n"},
        {{"mqkit", "help", "help"}, 1, " unknown help topic: help\n"},
        {{"mqkit", "-h", "E"}, 1, " ambiguous help topic prefix: E (matches: expand, explain)\n"},
        {{"mqkit", "E"}, 1, " ambiguous command prefix: E (matches: expand, explain)\n"},
        {{"mqkit", "exp", "-n"}, 1, " ambiguous command prefix: exp (matches: expand, explain)\n"},
        {{"mqkit", "Nothing"}, 1, " unknown command or argument: Nothing\n"},
        {{"mqkit", ""}, 1, " unknown command or argument: \n"},
        {{"mqkit", "--no-color"}, 1, " unknown command or argument: --no-color\n"},
        {{"mqkit", "a.mq"}, 1, " unknown command or argument: a.mq\n"},
    };
    for (const auto& row : rows) {
        const auto outcome = dispatch(row.arguments);
        EXPECT_EQ(outcome.status, row.status) << row.error;
        EXPECT_EQ(outcome.err, row.error.empty() ? "" : "[mqkit][ERROR]" + row.error);
        EXPECT_EQ(outcome.out, topLevelHelp("mqkit")) << row.error;
    }
}

TEST(Dispatch, AnEmptyArgumentVectorShowsTheHelpOfAProgramWithoutName) {
    const auto outcome = dispatch({});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, topLevelHelp("program"));
}

TEST(OlderShapes, AreRecognisedInTheirOrder) {
    struct Row {
        std::vector<const char*> arguments;
        std::string_view shape; // empty: none
    };
    const Row rows[] = {
        // Rename: the option anywhere together with a task file anywhere.
        {{"a.mq", "-r", "opt", "opt2"}, "rename"},
        {{"--rename", "old", "new", "demo.projmq"}, "rename"},
        {{"-u", "-r", "a.mq"}, "rename"},
        {{"-r", "opt", "opt2"}, ""},
        {{"a.mq", "--renamed"}, ""},
        {{"-r", "-a.mq"}, ""},
        {{"-r", "a.mq/"}, ""},
        {{"-r", "a.MQ"}, ""},
        {{"-r", ".mq"}, "rename"},
        // Update: the first word alone, as written.
        {{"-b"}, "update"},
        {{"--batch", "x"}, "update"},
        {{"-u", "demo.projmq", "-n", "opt"}, "update"},
        {{"--update"}, "update"},
        {{"-U"}, ""},
        {{"x", "-u"}, ""},
        // Project: an option or a project file anywhere.
        {{"x", "-n"}, "project"},
        {{"--name"}, "project"},
        {{"--exec"}, "project"},
        {{"--collect"}, "project"},
        {{"--rebuild"}, "project"},
        {{"--dry-run"}, "project"},
        {{"--run-comd"}, "project"},
        {{"--run-script"}, "project"},
        {{"--run-runner"}, "project"},
        {{"a.projmq"}, "project"},
        {{"x", "a.projmq"}, "project"},
        {{"-a.projmq"}, ""},
        {{"a.projmq.bak"}, ""},
        {{"--name=opt"}, ""},
        {{"-N"}, ""},
        {{"a.projmq", "-n", "opt", "--exec", "ls"}, "project"},
        {{"-l", "-n"}, "project"},
        // Template: the first word alone.
        {{"-t"}, "template"},
        {{"-i"}, "template"},
        {{"-l"}, "template"},
        {{"-c"}, "template"},
        {{"-m", "opt", "freq"}, "template"},
        {{"-v"}, "template"},
        {{"--test"}, "template"},
        {{"--list"}, "template"},
        {{"--interactive"}, "template"},
        {{"--category"}, "template"},
        {{"--merge"}, "template"},
        {{"--variable"}, "template"},
        {{"-T"}, ""},
        {{"x", "-t"}, ""},
        {{"--categories"}, ""},
        {{""}, ""},
        {{}, ""},
    };
    for (const auto& row : rows) {
        const OlderShape* shape = findOlderShape(row.arguments);
        EXPECT_EQ(shape == nullptr ? "" : shape->name, row.shape) << ::testing::PrintToString(row.arguments);
        if (shape != nullptr) {
            EXPECT_NE(shape->run, nullptr);
        }
    }
}

TEST(Dispatch, CommandWordsComeBeforeOlderShapes) {
    const auto outcome = dispatch({"mqkit", "FM", "a.mq", "-r", "demo.projmq"});
    EXPECT_EQ(outcome.err.find("rename"), std::string::npos);
    EXPECT_NE(outcome.err, "");
}

} // namespace
} // namespace morquill::app
