#include "project/project_command.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr std::string_view help = R"(Usage:
  mqkit project [command] <options>
  Project commands accept unique prefixes, for example mqkit proj co.
Commands:
  init
      -- Creates a project skeleton in the current directory.
  add [--path <project_dir|xxx.projmq>] [--dry-run] <xyz...>
      -- Imports one or more xyz files, creates case directories, and wires them into the main .projmq file.
  update [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-comd] [--dry-run]
      -- Refreshes only the selected task blocks' pre_comd / comd content, effectively using morquill --comd-only.
      -- If comd is not executed immediately, mqkit_update_comd.sh is written for later scheduler/direct execution.
      -- May enter interactive task selection when -n is omitted.
  rebuild [--path <project_dir|xxx.projmq|case_dir|case.mq>] [-n <task>[,<task>...]] [--run-script] [--dry-run]
      -- Cleans and reruns selected task blocks completely, without --comd-only.
      -- When --path points to a case directory or .mq, only that one case is rebuilt.
      -- May enter interactive task selection when -n is omitted.
  exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] -- <cmd...>
      -- Runs one command in each selected task directory.
      -- Requires explicit task names via -n; accepts wildcards such as -n 'opt*' or -n '*'.
  exec [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] --cmd "<cmd...>"
      -- Same as the shell-separator form above, but passes the command as one quoted string.
  collect [--path <project_dir|xxx.projmq>] -n <task>[,<task>...] [--dry-run] <glob...>
      -- Gathers matching files from selected task directories.
      -- Requires explicit task names via -n; accepts wildcards such as -n 'frag*' or -n '*'.
Options:
  --path [project_dir|xxx.projmq|case_dir|case.mq]
      For update/rebuild: accepts a project directory, explicit .projmq, case directory, or case .mq file
      For add/exec/collect: use a project directory or explicit .projmq
      If omitted, the unique .projmq in the current directory is preferred
  -n, --name [task][,task...]
      Task block names; may be repeated or comma-separated, e.g. -n opt -n soc or -n opt,soc
  --dry-run
      Show the planned actions without modifying files
  --run-comd
      For update only: execute comd after regenerating scripts; otherwise write mqkit_update_comd.sh for later use
  --run-script
      For rebuild only: run the configured mqrun kick command after the full rebuild
  --cmd <command>
      For exec only: pass the command as one quoted string
Examples:
  mqkit project init
  mqkit project add --path demo.projmq mol1.xyz mol2.xyz
  mqkit project update --path ./demo_project
  mqkit project update --path demo.projmq -n opt,soc --run-comd
  mqkit project update --path ./demo_project/mol1/mol1.mq -n opt
  mqkit project rebuild --path demo.projmq -n opt,soc --run-script
  mqkit project rebuild --path ./demo_project/mol1 -n opt
  mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'
  mqkit project exec -n 'opt*' -- 'echo [taskname]'
  mqkit project exec --path ./demo_project -n opt --cmd "grep Normal *.log"
  mqkit project collect --path ./demo_project -n soc 'plot/*.png' '*.txt'
  mqkit proj co --path ./demo_project -n soc '*.log'
Compatibility forms:
  mqkit -u ./demo_project -n opt --run-comd
      Equivalent to: mqkit project update --path ./demo_project -n opt --run-comd
  mqkit demo.projmq -n opt --rebuild --run-script
      Equivalent to: mqkit project rebuild --path demo.projmq -n opt --run-script
  mqkit demo.projmq -n soc --exec 'cat soc*.log'
      Equivalent to: mqkit project exec --path demo.projmq -n soc -- 'cat soc*.log'
)";

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
