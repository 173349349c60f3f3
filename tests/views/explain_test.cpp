// The arguments, the choice of tasks and the exit status. The command-line tests compare both views in full.

#include "views/explain.h"

#include "fixtures/scratch_tree.h"

namespace morquill::views {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class Explain : public ScratchTree {
  protected:
    Explain() {
        write("t.mq", "dsl_version: 2\nmatrix:\n  a: 1, 2\n$opt\n%keywords [a]\n$sp\n%source opt\n");
    }

    Output explain(std::vector<std::string> words) {
        words.insert(words.begin(), {"/opt/mqkit", "explain"});
        return runCommand(runExplain, std::move(words));
    }
};

TEST_F(Explain, ShowsTheDeclaredTasksOrThoseThatRun) {
    const auto declared = explain({"t.mq"});
    EXPECT_EQ(declared.status, 0);
    EXPECT_THAT(declared.out, StartsWith("file: t.mq\n"
                                         "dsl_version: 2\n"
                                         "task_view: source\n"
                                         "task_count: 2\n"
                                         "expanded_task_count: 4\n"
                                         "\n"
                                         "task: opt\n"
                                         "  block_span: t.mq:4:1-4:5\n"));
    EXPECT_THAT(declared.out, Not(HasSubstr("matrix_variant_key")));
    const auto running = explain({"--expanded", "t.mq", "--task", "sp__a_2"});
    EXPECT_EQ(running.status, 0);
    EXPECT_THAT(running.out, HasSubstr("task_view: expanded\ntask_count: 1\nexpanded_task_count: 4\n\n"
                                       "task: sp__a_2\n"));
    EXPECT_THAT(running.out, HasSubstr("  source: opt__a_2\n"));
    EXPECT_THAT(running.out, HasSubstr("  template_task_name: sp\n  matrix_variant_key: a_2\n"));
}

TEST_F(Explain, ASourceThatNobodyWroteIsNotShown) {
    EXPECT_THAT(explain({"t.mq", "--task", "opt"}).out, HasSubstr("  source: \n  dependencies: []\n"));
    EXPECT_THAT(explain({"t.mq", "--task", "opt", "--format", "json"}).out,
                HasSubstr("      \"source\": \"\",\n      \"dependencies\": [],\n"));
}

TEST_F(Explain, WhatIsWrongIsOneLineAndStatusOne) {
    struct Row {
        std::vector<std::string> words;
        std::string error;
    };
    write("wrong.mq", "$a\n%nonsense\n");
    const Row rows[] = {
        {{}, "explain expects a <task.mq> path"},
        {{"t.mq", "--task"}, "--task expects a value"},
        {{"t.mq", "--format"}, "--format expects a value"},
        {{"t.mq", "--format", "xml"}, "unsupported explain format: xml"},
        {{"t.mq", "--short"}, "unknown explain option: --short"},
        {{"t.mq", "u.mq"}, "unexpected extra argument: u.mq"},
        {{"t.mq", "--task", "opt__a_1"}, "task not found in explain view: opt__a_1"},
        {{"missing.mq"}, "could not open file: missing.mq"},
        {{"wrong.mq"}, "wrong.mq:2:1-2:10: error: task 'a' contains unknown directive '%nonsense'"},
    };
    for (const auto& [words, error] : rows) {
        const auto output = explain(words);
        EXPECT_EQ(output.status, 1) << error;
        EXPECT_EQ(output.out, "") << error;
        EXPECT_EQ(output.err, error + "\n");
    }
}

TEST_F(Explain, HelpWinsOverWhatFollowsItAndOverAMissingPath) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"t.mq", "-h", "--nonsense"}, {"--help"}, {"--expanded"}}) {
        const auto output = explain(words);
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.err, "");
        EXPECT_THAT(output.out, StartsWith("Usage:\n  mqkit explain <task.mq> [--task <name>] "));
    }
}

} // namespace
} // namespace morquill::views
