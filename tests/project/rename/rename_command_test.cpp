// The frame around a rename: help, refusals, exit status. What is renamed is the matter of rename_test.cpp.

#include "project/rename/rename.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class RenameCommand : public ScratchTree {
  protected:
    Output call(int (*operation)(int, char**), std::vector<std::string> words) {
        words.insert(words.begin(), "/opt/bin/tool");
        Arguments arguments(std::move(words));
        return run("", [&] { return operation(arguments.argc(), arguments.argv()); });
    }
};

const std::string usage = "Usage:\n  tool rename <task.mq|task.projmq> <old_block> <new_block>\n";

TEST_F(RenameCommand, TheHelpNamesTheProgramAsItWasCalledAndLeavesNoMark) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"rename", "help"}, {"rename", "-h", "a", "b"}, {"rename", "--help"}}) {
        const Output output = call(runRename, words);
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.err, "");
        EXPECT_THAT(output.out, StartsWith(usage));
        EXPECT_THAT(output.out, HasSubstr("Equivalent to: tool rename demo.projmq old_block new_block\n"));
        EXPECT_THAT(output.out, Not(HasSubstr("`")));
        EXPECT_THAT(output.out, Not(HasSubstr("@")));
    }
    EXPECT_EQ(call(runRenameCompatibility, {"a.mq", "-r", "x", "y", "-h"}).status, 0);
}

TEST_F(RenameCommand, AnythingElseThatDoesNotFitShowsTheHelpWithAnError) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"rename"}, {"rename", "a.mq", "x"}, {"rename", "a.mq", "x", "y", "z"}}) {
        const Output output = call(runRename, words);
        EXPECT_EQ(output.status, 1);
        EXPECT_EQ(output.err, "");
        EXPECT_THAT(output.out, StartsWith(usage));
    }
    const Output older = call(runRenameCompatibility, {"a.mq", "-r", "x"});
    EXPECT_EQ(older.status, 1);
    EXPECT_EQ(older.err, "[mqkit][ERROR] -r/--rename expects two values: <old_block> <new_block>\n");
    EXPECT_THAT(older.out, StartsWith(usage));
}

TEST_F(RenameCommand, BothShapesRename) {
    write("c/c.mq", "$opt\n");
    EXPECT_EQ(call(runRename, {"rename", "c/c.mq", "opt", "sp"}).status, 0);
    EXPECT_EQ(readTextFile(at("c/c.mq")), "$sp\n");
    EXPECT_EQ(call(runRenameCompatibility, {"--rename", "sp", "ts", "c/c.mq"}).status, 0);
    EXPECT_EQ(readTextFile(at("c/c.mq")), "$ts\n");
}

TEST_F(RenameCommand, AFailureIsStatusOneWithoutTheHelp) {
    const Output output = call(runRename, {"rename", "missing.mq", "opt", "sp"});
    EXPECT_EQ(output.status, 1);
    EXPECT_THAT(output.err, StartsWith("[mqkit][ERROR] "));
    EXPECT_THAT(output.out, Not(HasSubstr("Usage:")));
}

TEST(RenameShape, NeedsTheOptionAndATaskFileAnywhere) {
    const std::vector<const char*> renames[] = {{"a.mq", "-r", "x", "y"}, {"--rename", "x", "y", "p.projmq"}};
    for (const auto& words : renames) {
        EXPECT_TRUE(isRenameShape(words)) << words.front();
    }
    const std::vector<const char*> others[] = {
        {}, {"a.mq"}, {"-r", "x"}, {"-r", "-a.mq"}, {"a.mq", "-h"}, {"a.mq", "help"}};
    for (const auto& words : others) {
        EXPECT_FALSE(isRenameShape(words)) << words.size();
    }
}

} // namespace
} // namespace morquill::project
