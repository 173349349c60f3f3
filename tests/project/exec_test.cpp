#include "project/project_command.h"

#include "console/messages.h"
#include "fixtures/project_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Exec : public ProjectTree {
  protected:
    Output exec(const std::string& command, std::vector<std::string> names,
                console::RunMode mode = console::RunMode::apply) {
        ProjectOptions chosen = options(ProjectSubCommand::Exec, std::move(names));
        chosen.command = command;
        chosen.dryRun = mode == console::RunMode::dryRun;
        return run("", [&] { return runProjectWorkflow(chosen, "mqkit"); });
    }
};

TEST_F(Exec, RunsInEveryBlockOfEveryCaseWithItsNamesPutIn) {
    const Output output = exec("echo '[taskname] [inputname] [other]' >out; pwd -P >>out", {"opt", "soc"});
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(readTextFile(at("p/m1/opt/out")), "opt opt_m1 [other]\n" + at("p/m1/opt") + "\n");
    EXPECT_EQ(readTextFile(at("p/m2/soc/out")), "soc soc_m2 [other]\n" + at("p/m2/soc") + "\n");
    EXPECT_THAT(output.out,
                StartsWith("\n[Project Exec]\n  project template: " + templateFile() +
                           "\n  task blocks: $opt, $soc\n  command: echo '[taskname] [inputname] "
                           "[other]' >out; pwd -P >>out\n\n\n>>> [m1] " +
                           at("p/m1/opt") + "\n$ echo 'opt opt_m1 [other]' >out; pwd -P >>out\n"));
    EXPECT_THAT(output.out, EndsWith("\n[mqkit] finished: executed 4/4 block(s) successfully.\n"));
}

TEST_F(Exec, AFailureDoesNotStopTheOthersAndCounts) {
    const Output output = exec("[ [taskname] = soc ] && touch done", {"*"});
    EXPECT_EQ(output.status, 2);
    EXPECT_THAT(output.err, StartsWith("[mqkit][WARN] command failed: " + at("p/m1/opt")));
    EXPECT_THAT(output.out, EndsWith("\n[mqkit] finished: executed 2/4 block(s) successfully.\n"
                                     "[mqkit] note: 2 block(s) failed.\n"));
    EXPECT_THAT(tree("p/m2/soc"), ElementsAre("done = "));
}

TEST_F(Exec, AMissingBlockIsToldAndCounts) {
    std::filesystem::remove(at("p/m1/opt"));
    const Output output = exec("true", {"opt"});
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(output.out, HasSubstr("[mqkit][SKIP] m1 / $opt : block directory is missing\n"));
    EXPECT_THAT(output.out, EndsWith("executed 1/1 block(s) successfully.\n"
                                     "[mqkit] note: 1 block directory/directories are missing.\n"));
}

TEST_F(Exec, ADryRunRunsNothing) {
    const Output output = exec("touch done", {"opt"}, console::RunMode::dryRun);
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.out, HasSubstr("  command: touch done  (dry-run)\n"));
    EXPECT_THAT(output.out, EndsWith("executed 2/2 block(s) successfully.\n"));
    EXPECT_THAT(tree("p/m1/opt"), ElementsAre());
}

TEST_F(Exec, NeedsACommandAndACase) {
    for (const char* command : {"", " \t\n"}) {
        const Output output = exec(command, {"opt"});
        EXPECT_EQ(output.status, 1);
        EXPECT_EQ(output.err, "[mqkit][ERROR] project exec requires a command via --cmd or -- <cmd...>.\n");
        EXPECT_THAT(output.out, StartsWith("Usage:\n  mqkit project "));
    }
    write("bare/demo.projmq", "$opt\n");
    ProjectOptions none = options(ProjectSubCommand::Exec, {"opt"});
    none.path = "bare";
    none.command = "true";
    const Output output = run("", [&] { return runProjectWorkflow(none, "mqkit"); });
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err,
              "[mqkit][ERROR] no case subdirectories were found in project: " + at("bare") + "\n");
}

} // namespace
} // namespace morquill::project
