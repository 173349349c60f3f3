// Where the text of `fmt`, `migrate` and `expand` goes, and what
// they refuse. The command-line tests compare their whole output.

#include "views/file_commands.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <sys/stat.h>

namespace morquill::views {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

using RunOperation = int (*)(int, char**);

const std::string written = "$a\n%keywords   'k'\n";

class FileCommands : public ScratchTree {
  protected:
    FileCommands() { write("t.mq", written); }

    Output call(RunOperation operation, std::vector<std::string> words) {
        words.insert(words.begin(), {"/opt/mqkit", "command"});
        return runCommand(operation, std::move(words));
    }
};

TEST_F(FileCommands, TheTextGoesToStandardOutputToAFileOrToItsPlace) {
    const auto shown = call(runFmt, {"t.mq"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.err, "");
    const std::string text = shown.out;
    EXPECT_THAT(text, StartsWith("dsl_version: 2\n\n$a\n"));
    EXPECT_THAT(tree(), ElementsAre("t.mq = " + written)) << "nothing is written unasked";

    for (const char* option : {"-o", "--out", "--output"}) {
        const auto copied = call(runFmt, {option, "new.mq", "t.mq"});
        EXPECT_EQ(copied.status, 0) << option;
        EXPECT_EQ(copied.out, "[mqkit] wrote task file: new.mq\n") << option;
        EXPECT_EQ(readTextFile(at("new.mq")), text) << option;
        std::filesystem::remove(at("new.mq"));
    }
    for (const char* option : {"-i", "--in-place"}) {
        write("t.mq", written);
        EXPECT_EQ(call(runMigrate, {"t.mq", option}).out, "[mqkit] wrote task file: t.mq\n");
        EXPECT_EQ(readTextFile(at("t.mq")), text) << option;
    }
}

TEST_F(FileCommands, APipeIsNotWrittenInItsPlace) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    const auto refused = call(runFmt, {"-i", "pipe"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err, "[mqkit][ERROR] --in-place needs a regular file to write to, pipe is none\n");
}

TEST_F(FileCommands, OnlyMigrateTakesTheOlderListOfSources) {
    write("old.mq", "$a\n$b\n$c\n%source a,b\n");
    EXPECT_EQ(call(runMigrate, {"old.mq"}).status, 0);
    EXPECT_EQ(call(runFmt, {"old.mq"}).status, 1);
    EXPECT_EQ(call(runExpand, {"old.mq"}).status, 1);
}

TEST_F(FileCommands, OnlyExpandMakesTheVariantsOfAMatrix) {
    write("m.mq", "matrix:\n  a: 1, 2\n$b\n%keywords [a]\n");
    EXPECT_THAT(call(runExpand, {"m.mq"}).out, ::testing::HasSubstr("\nmatrix:\n"));
    for (const char* option : {"--expanded", "--matrix-expanded"}) {
        const auto output = call(runExpand, {"m.mq", option});
        EXPECT_THAT(output.out, ::testing::Not(::testing::HasSubstr("matrix:"))) << option;
        EXPECT_THAT(output.out, ::testing::HasSubstr("\n$b__a_2\n")) << option;
        EXPECT_EQ(call(runFmt, {"m.mq", option}).err,
                  "[mqkit][ERROR] unknown argument: " + std::string(option) + "\n");
    }
    EXPECT_EQ(call(runExpand, {"m.mq", "--in-place"}).err, "[mqkit][ERROR] unknown argument: --in-place\n");
}

TEST_F(FileCommands, RefusalsNameWhatIsWrong) {
    struct Row {
        RunOperation operation;
        std::vector<std::string> words;
        const char* error;
    };
    const Row rows[] = {
        {runFmt, {}, "fmt expects a <task.mq> path"},
        {runMigrate, {"-i"}, "migrate expects a <task.mq> path"},
        {runExpand, {"-o", "x"}, "expand expects a <task.mq> path"},
        {runFmt, {"t.mq", "-o"}, "-o expects a value"},
        {runFmt, {"t.mq", "u.mq"}, "unexpected extra path: u.mq"},
        {runFmt, {"t.mq", ""}, "unknown argument: "},
        {runFmt, {"t.mq", "-i", "-o", "x"}, "use either --in-place or --out, not both"},
        {runFmt, {"missing.mq"}, "could not open file: missing.mq"},
        {runFmt, {"t.mq", "-o", "no/where.mq"}, "could not write output file: no/where.mq"},
        {runExpand,
         {"t.mq", "-o", "./t.mq"},
         "expand never overwrites its input; choose a different --output path"},
    };
    for (const auto& [operation, words, error] : rows) {
        const auto output = call(operation, words);
        EXPECT_EQ(output.status, 1) << error;
        EXPECT_EQ(output.out, "") << error;
        EXPECT_EQ(output.err, "[mqkit][ERROR] " + std::string(error) + "\n");
    }
    EXPECT_THAT(tree(), ElementsAre("t.mq = " + written));
}

TEST_F(FileCommands, AFullDiskIsReported) {
    write("t.mq", "$a\n%keywords " + std::string(4000, 'x') + "\n");
    Output output;
    {
        const FileSizeLimit limit(100);
        output = call(runFmt, {"t.mq", "-i"});
    }
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not write file: t.mq\n");
}

} // namespace
} // namespace morquill::views
