#include "graph/graph_command.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/golden.h"
#include "fixtures/temporary_directory.h"
#include "support/file.h"

#include <gtest/gtest.h>

namespace morquill::graph {
namespace {

using console::testing::ScopedEnv;
using console::testing::throughPipe;

/// What a command line gives: its status and both streams, each for itself.
struct Outcome {
    int status = -1;
    std::string output;
    std::string error;
};

Outcome run(std::vector<std::string> words) {
    words.insert(words.begin(), "bin/mqkit-graph");
    std::vector<char*> argv;
    for (auto& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    Outcome outcome;
    outcome.output = throughPipe({STDOUT_FILENO}, [&] {
        outcome.error = throughPipe(
            {STDERR_FILENO}, [&] { outcome.status = runGraph(static_cast<int>(words.size()), argv.data()); });
    });
    return outcome;
}

const std::string matrix = (golden::sourceTree / "tests/golden/graph/matrix.mq").string();

TEST(GraphCommand, DotIsTheFormatUnlessAnotherIsAskedFor) {
    EXPECT_EQ(run({matrix}).output, golden::text("graph/matrix.dot"));
    EXPECT_EQ(run({matrix, "--format", "dot"}).output, golden::text("graph/matrix.dot"));
    EXPECT_EQ(run({"--format", "mermaid", matrix}).output, golden::text("graph/matrix.mmd"));
    EXPECT_EQ(run({"--format", "mermaid", matrix, "--format", "dot"}).output,
              golden::text("graph/matrix.dot"));
    EXPECT_EQ(run({"--expanded", matrix}).output, golden::text("graph/matrix.expanded.dot"));
}

TEST(GraphCommand, HelpIsNoFault) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"-h"}, {"--help", "--nonsense"}, {matrix, "--help"}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.output.substr(0, outcome.output.find('[')), "Usage:\n  mqkit-graph <task.mq> ");
        EXPECT_EQ(outcome.error, "");
    }
}

TEST(GraphCommand, ALineThatCannotBeFollowedIsRefused) {
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{}, "mqkit-graph expects a <task.mq> path\n"},
        {{"--expanded"}, "mqkit-graph expects a <task.mq> path\n"},
        {{matrix, "--format"}, "--format expects a value\n"},
        {{"--format", "png", matrix}, "unsupported graph format: png\n"},
        {{"--format", "DOT"}, "unsupported graph format: DOT\n"},
        {{matrix, "-x"}, "unknown graph option: -x\n"},
        {{matrix, ""}, "unexpected extra argument: \n"},
        {{""}, "could not open file: \n"},
        {{"missing.mq"}, "could not open file: missing.mq\n"},
    };
    for (const auto& [words, error] : rows) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 1) << error;
        EXPECT_EQ(outcome.output, "") << error;
        EXPECT_EQ(outcome.error, error);
    }
}

/// A directory that is the whole `PATH`, with a program `dot` of the given text in it or none.
class WithDot : public ::testing::Test {
  protected:
    void install(const std::string& script) {
        ASSERT_TRUE(writeTextFile(directory.path("dot"), script));
        std::filesystem::permissions(directory.path("dot"), std::filesystem::perms::owner_all);
    }

    TemporaryDirectory directory;
    ScopedEnv path{"PATH", directory.root()};
};

TEST_F(WithDot, SvgIsWhatItMakesOfTheDotText) {
    install("#!/bin/sh\necho \"$#\" \"$@\"\nexec /bin/cat\n");
    const Outcome outcome = run({matrix, "--format", "svg"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "1 -Tsvg\n" + golden::text("graph/matrix.dot"));
    EXPECT_EQ(outcome.error, "");
}

TEST_F(WithDot, NothingIsWrittenWhenItFails) {
    install("#!/bin/sh\necho half a picture\necho reason >&2\nexit 3\n");
    const Outcome outcome = run({matrix, "--format", "svg"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error,
              "reason\nGraphviz could not draw the picture: program 'dot' exited with code 3\n");
}

TEST_F(WithDot, WithoutItTheMessageSaysWhatToDo) {
    const Outcome outcome = run({matrix, "--format", "svg"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error,
              "--format svg needs Graphviz: failed to execute 'dot': No such file or directory; "
              "install it, or take --format dot or mermaid\n");
}

} // namespace
} // namespace morquill::graph
