// The arguments and the exit status. The command-line tests compare the whole output.

#include "lint/lint.h"

#include "fixtures/scratch_tree.h"

namespace morquill::lint {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Lint : public ScratchTree {
  protected:
    Lint() {
        write("sound.mq", "$a\n%keywords k\n");
        write("warned.mq", "$a\n%program xtb\n%args x\n#INCLUDE b.mq\n");
        write("wrong.mq", "%nonsense\n$a\n%nonsense\n");
    }

    Output lint(std::vector<std::string> words) {
        words.insert(words.begin(), {"/opt/mqkit", "lint"});
        return runCommand(runLint, std::move(words));
    }
};

TEST_F(Lint, TheStatusSaysWhetherSomethingCountsAsAnError) {
    EXPECT_EQ(lint({"sound.mq"}).status, 0);
    EXPECT_EQ(lint({"sound.mq", "--strict"}).status, 0);
    EXPECT_EQ(lint({"warned.mq"}).status, 0);
    EXPECT_EQ(lint({"--strict", "warned.mq"}).status, 1);
    EXPECT_EQ(lint({"wrong.mq"}).status, 1);
    EXPECT_EQ(lint({"sound.mq", "wrong.mq"}).status, 1);
}

TEST_F(Lint, WithoutAPathItChecksTheCurrentDirectory) {
    const auto output = lint({"--quiet"});
    EXPECT_EQ(output.status, 1);
    EXPECT_THAT(output.out, StartsWith("checked 3 file(s), 1 error(s), "));
}

TEST_F(Lint, NothingToCheckIsAnError) {
    dir("empty");
    for (const char* path : {"empty", "missing.mq"}) {
        const auto output = lint({path});
        EXPECT_EQ(output.status, 1) << path;
        EXPECT_EQ(output.out, "") << path;
        EXPECT_EQ(output.err, "no .mq files found\n") << path;
    }
}

TEST_F(Lint, AFormatIsTextOrJsonInAnyCase) {
    EXPECT_THAT(lint({"sound.mq", "--format", "JSON"}).out, StartsWith("{\n  \"files\": [\n"));
    EXPECT_EQ(lint({"sound.mq", "--format", "Text"}).out,
              "no issues found\nchecked 1 file(s), 0 error(s), 0 warning(s)\n");
}

TEST_F(Lint, WhatItDoesNotKnowIsRefusedWithTheUsage) {
    struct Row {
        std::vector<std::string> words;
        const char* error;
    };
    const Row rows[] = {
        {{"--format"}, "--format expects a value\n"},
        {{"--format", "xml"}, "unsupported format: xml\n"},
        {{"--format=json"}, "unknown argument: --format=json\n"},
        {{"-x", "sound.mq"}, "unknown argument: -x\n"},
    };
    for (const auto& [words, error] : rows) {
        const auto output = lint(words);
        EXPECT_EQ(output.status, 1) << error;
        EXPECT_EQ(output.err, error);
        EXPECT_THAT(output.out,
                    StartsWith("Usage:\n  mqkit lint [--strict] [--quiet] [--format text|json] <path>...\n"));
    }
}

TEST_F(Lint, HelpIsThatOfTheCommandFirstAndOfTheDriverAfterOtherArguments) {
    for (const char* token : {"help", "-h", "--help"}) {
        const auto output = lint({token, "--nonsense"});
        EXPECT_EQ(output.status, 0) << token;
        EXPECT_THAT(output.out, StartsWith("  Lint .mq files and directories.\n\nUsage:\n  mqkit lint "))
            << token;
    }
    const auto later = lint({"--strict", "--help"});
    EXPECT_EQ(later.status, 0);
    EXPECT_THAT(later.out, EndsWith("lint parses task files with shared parser AST and source spans\n"));
}

} // namespace
} // namespace morquill::lint
