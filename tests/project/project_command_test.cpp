#include "project/project_command.h"

#include "fixtures/golden.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string help = golden::plainHelp("project");

class ProjectCommand : public ScratchTree {
  protected:
    Output call(int (*command)(int, char**), std::initializer_list<std::string> words) {
        Arguments arguments(words);
        return run("", [&] { return command(arguments.argc(), arguments.argv()); });
    }
    void expectHelp(const Output& output, int status, std::string_view error) {
        EXPECT_EQ(output.out, help);
        EXPECT_EQ(output.status, status);
        EXPECT_EQ(output.err, error);
    }
};

TEST_F(ProjectCommand, TheHelpIsWhole) {
    const Output output = run("", [] {
        printProjectHelp("/opt/bin/mqkit");
        return 0;
    });
    EXPECT_EQ(output.out, help);
    EXPECT_EQ(output.err, "");
}

TEST_F(ProjectCommand, AParseFailureShowsTheHelp) {
    expectHelp(call(runProject, {"mqkit", "project"}), 1, "");
    expectHelp(call(runProject, {"mqkit", "project", "help"}), 0, "");
    expectHelp(call(runProject, {"mqkit", "project", "init", "x"}), 1, "");
    expectHelp(call(runProject, {"mqkit", "project", "update", "--run-script"}), 1,
               "[mqkit][ERROR] --run-script is only valid with project rebuild.\n");
    expectHelp(call(runProject, {"mqkit", "project", "update", "--run-script", "-h"}), 0,
               "[mqkit][ERROR] --run-script is only valid with project rebuild.\n");
    expectHelp(call(runProjectCompatibility, {"mqkit", "-n"}), 1,
               "[mqkit][ERROR] -n/--name expects a value\n");
    expectHelp(call(runProjectCompatibility, {"mqkit", "-n", "a", "--help"}), 0, "");
    expectHelp(call(runUpdateCompatibility, {"mqkit", "-u", "x", "y", "-h"}), 1,
               "[mqkit][ERROR] unknown argument: y\n");
    expectHelp(call(runUpdateCompatibility, {"mqkit", "-u", "help"}), 0, "");
    const Output nothing = call(runUpdateCompatibility, {"mqkit"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.out + nothing.err, "");
}

TEST_F(ProjectCommand, AHelpWordInALineThatCouldBeReadIsNoQuestion) {
    write("demo.projmq", "$opt\n%keywords a\n");
    expectHelp(call(runProject, {"mqkit", "project", "exec", "-n", "x", "--", "ls", "--help"}), 1,
               "[mqkit][ERROR] task block not found in .projmq: x\navailable task blocks: opt\n");
    expectHelp(call(runProject, {"mqkit", "project", "exec", "-n", "help", "--cmd", "ls"}), 1,
               "[mqkit][ERROR] task block not found in .projmq: help\navailable task blocks: opt\n");
}

TEST_F(ProjectCommand, AddTakesNoBlockNames) {
    write("demo.projmq", "$opt\n%keywords a\n");
    expectHelp(call(runProject, {"mqkit", "project", "add", "-n", "opt", "a.xyz"}), 1,
               "[mqkit][ERROR] project add does not accept -n/--name.\n");
}

TEST_F(ProjectCommand, WithoutASubCommandTheNamesAreCheckedAndTheHelpIsShown) {
    expectHelp(call(runProjectCompatibility, {"mqkit", "none.projmq", "-n", "opt"}), 1,
               "[mqkit][ERROR] could not resolve a .projmq project template from path: " + at("none.projmq") +
                   "\n");
    write("demo.projmq", "$opt\n%keywords a\n");
    expectHelp(call(runProjectCompatibility, {"mqkit", "demo.projmq", "-n", "opt"}), 1, "");
    expectHelp(call(runProjectCompatibility, {"mqkit", "demo.projmq"}), 1,
               "[mqkit][ERROR] specify at least one task block with -n/--name.\n");
    expectHelp(call(runProjectCompatibility, {"mqkit", "demo.projmq", "-n", "o*,x"}), 1,
               "[mqkit][ERROR] task block not found in .projmq: x\navailable task blocks: opt\n");
    write("demo.projmq", "$opt\n%oops\n");
    const Output broken = call(runProjectCompatibility, {"mqkit", "demo.projmq", "-n", "opt"});
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.out, "");
    EXPECT_EQ(broken.err, "[mqkit][ERROR] failed to parse task file: " + at("demo.projmq") +
                              ":2:1-2:6: error: task 'opt' contains unknown directive '%oops'\n");
}

} // namespace
} // namespace morquill::project
