#include "project/update.h"

#include "fixtures/project_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Update : public ProjectTree {
  protected:
    Update() {
        write("p/m1/mq.status", "opt\nsoc\n");
        // What the generator sees goes into the file that HOME names.
        sibling("morquill", "echo \"$@\" >\"$HOME\"; cat m1/mq.status mq.status 2>/dev/null | grep -v '^#' | "
                            "cut -d' ' -f1 >>\"$HOME\"");
    }

    Output update(const UpdateOptions& how) {
        return run("", [&] { return updateProject(project(), templateFile(), {"opt"}, how); });
    }
};

TEST_F(Update, TheGeneratorSeesTheSelectedTasksOnlyAndTheStatusIsBackAfterwards) {
    const Output output = update({});
    EXPECT_EQ(output.status, 1); // true
    EXPECT_EQ(output.err, "");
    EXPECT_EQ(readTextFile(at("home")), templateFile() + " --comd-only\nopt\n");
    EXPECT_EQ(readTextFile(at("p/m1/mq.status")), "opt\nsoc\n");
    EXPECT_EQ(readTextFile(at("p/m2/mq.status")), std::nullopt);
    EXPECT_THAT(
        output.out,
        HasSubstr("\n[mqkit] summary: cases=2, mq.status scoped=1, mq.status hidden=0, selected completed "
                  "records=1\n"));
    EXPECT_THAT(output.out,
                HasSubstr("[mqkit] generated comd runner script: " + at("p/mqkit_update_comd.sh")));
    EXPECT_TRUE(readTextFile(at("p/mqkit_update_comd.sh")));
}

TEST_F(Update, AFailedGeneratorLeavesTheStatusAsItWas) {
    sibling("morquill", "exit 3");
    const Output output = update({});
    EXPECT_EQ(output.status, 0); // false
    EXPECT_THAT(output.err, StartsWith("[mqkit][ERROR] failed to re-run morquill in --comd-only mode"));
    EXPECT_EQ(readTextFile(at("p/m1/mq.status")), "opt\nsoc\n");
    EXPECT_EQ(readTextFile(at("p/mqkit_update_comd.sh")), std::nullopt);
}

TEST_F(Update, ADryRunTouchesNothing) {
    UpdateOptions how;
    how.dryRun = true;
    const auto before = tree("p");
    const Output output = update(how);
    EXPECT_EQ(output.status, 1); // true
    EXPECT_THAT(output.out, HasSubstr("[mqkit][DRY-RUN] would generate comd runner script: "));
    EXPECT_EQ(tree("p"), before);
    EXPECT_EQ(readTextFile(at("home")), std::nullopt);
}

TEST_F(Update, ACaseIsUpdatedAlone) {
    const Output output = run("", [&] { return updateCase(at("p/m1"), at("p/m1/m1.mq"), {"soc"}, {}); });
    EXPECT_EQ(output.status, 1); // true
    EXPECT_EQ(readTextFile(at("home")), at("p/m1/m1.mq") + " --comd-only\nsoc\n");
    EXPECT_TRUE(readTextFile(at("p/m1/mqkit_update_comd.sh")));
    EXPECT_EQ(readTextFile(at("p/mqkit_update_comd.sh")), std::nullopt);
}

TEST_F(Update, RunsComdInEveryBlockAndCountsWhatFailed) {
    write("p/m1/opt/comd", "exit 3");
    write("p/m2/opt/comd", "pwd -P >out");
    std::filesystem::remove(at("p/m1/soc"));
    UpdateSummary summary;
    const Output output = run("", [&] {
        runComdForCases(cases(), {"opt", "soc"}, console::RunMode::apply, summary);
        return 0;
    });
    EXPECT_EQ(summary.comdSuccess, 1);
    EXPECT_EQ(summary.comdFailed, 1);
    EXPECT_EQ(readTextFile(at("p/m2/opt/out")), at("p/m2/opt") + "\n");
    EXPECT_THAT(output.err, StartsWith("[mqkit][WARN] comd execution failed: " + at("p/m1/opt")));
    EXPECT_EQ(output.out, "\n[mqkit] comd execution for selected task blocks\n"
                          "[mqkit] execute m1 / $opt -> bash comd\n"
                          "[mqkit][SKIP] m1 / $soc : block directory is missing\n"
                          "[mqkit] execute m2 / $opt -> bash comd\n"
                          "[mqkit][SKIP] m2 / $soc : comd is missing\n");
}

TEST_F(Update, ADryRunCountsTheBlocksThatWouldRun) {
    write("p/m1/opt/comd", "touch ran");
    UpdateSummary summary;
    (void)run("", [&] {
        runComdForCases(cases(), {"opt"}, console::RunMode::dryRun, summary);
        return 0;
    });
    EXPECT_EQ(summary.comdSuccess, 1);
    EXPECT_EQ(summary.comdFailed, 0);
    EXPECT_THAT(tree("p/m1/opt"), ElementsAre("comd = touch ran"));
}

} // namespace
} // namespace morquill::project
