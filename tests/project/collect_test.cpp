#include "project/project_command.h"

#include "console/messages.h"
#include "fixtures/project_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Collect : public ProjectTree {
  protected:
    Collect() {
        write("p/m1/opt/a.log", "1");
        write("p/m1/opt/plot/b.png", "2");
        write("p/m2/opt/a.log", "3");
    }

    Output collect(std::vector<std::string> patterns, std::vector<std::string> names,
                   console::RunMode mode = console::RunMode::apply) {
        ProjectOptions chosen = options(ProjectSubCommand::Collect, std::move(names));
        chosen.patterns = std::move(patterns);
        chosen.dryRun = mode == console::RunMode::dryRun;
        return run("", [&] { return runProjectWorkflow(chosen, "mqkit"); });
    }
};

TEST_F(Collect, ItemsOfOneBlockAreNamedByTheirCase) {
    const Output output = collect({"*.log", "plot/*.png"}, {"opt"});
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(tree("p/results"), ElementsAre("a_m1.log = 1", "a_m2.log = 3", "b_m1.png = 2"));
    EXPECT_EQ(output.out,
              "\n[Project Collect]\n  project template: " + templateFile() +
                  "\n  task blocks: $opt\n  patterns : *.log plot/*.png\n  results  : " + at("p/results") +
                  "\n\n" + "[mqkit] copy: " + at("p/m1/opt/a.log") + " -> " + at("p/results/a_m1.log") +
                  "\n" + "[mqkit] copy: " + at("p/m1/opt/plot/b.png") + " -> " + at("p/results/b_m1.png") +
                  "\n" + "[mqkit] copy: " + at("p/m2/opt/a.log") + " -> " + at("p/results/a_m2.log") + "\n" +
                  "[mqkit][SKIP] m2 / $opt : plot/*.png\n\n[mqkit] finished: collected 3 item(s) into " +
                  at("p/results") + "\n");
}

TEST_F(Collect, SeveralBlocksHaveADirectoryEach) {
    write("p/m1/soc/a.log", "4");
    const Output output = collect({"*.log"}, {"opt", "soc"});
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.out, HasSubstr("  layout: multi-task mode writes to results/<task>/\n"));
    EXPECT_THAT(tree("p/results"),
                ElementsAre("opt/", "opt/a_m1.log = 1", "opt/a_m2.log = 3", "soc/", "soc/a_m1.log = 4"));
}

TEST_F(Collect, ADirectoryIsTakenAsAWhole) {
    const Output output = collect({"plot/"}, {"opt"});
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(tree("p/results"), ElementsAre("plot_m1/", "plot_m1/b.png = 2"));
}

TEST_F(Collect, MissingBlocksAndFailedCopiesAreCounted) {
    dir("p/results/a_m1.log"); // in the way
    EXPECT_EQ(collect({"*.log"}, {"opt"}).status, 2);
    std::filesystem::remove_all(at("p/m2/opt"));
    const Output output = collect({"*.log"}, {"opt"});
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.err, "[mqkit][WARN] copy failed: " + at("p/m1/opt/a.log") + "\n");
    EXPECT_THAT(output.out, HasSubstr("[mqkit][SKIP] m2 / $opt : block directory is missing\n"));
    EXPECT_THAT(output.out, EndsWith("[mqkit] note: 1 case/task combinations are missing block directories.\n"
                                     "[mqkit] note: 1 collected item(s) failed to copy.\n"));
}

TEST_F(Collect, ADryRunCopiesNothing) {
    const Output output = collect({"*.log"}, {"opt"}, console::RunMode::dryRun);
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.out, HasSubstr("  patterns : *.log  (dry-run)\n"));
    EXPECT_THAT(output.out, HasSubstr("collected 2 item(s)"));
    EXPECT_THAT(tree("p/results"), ElementsAre());
}

TEST_F(Collect, NeedsAPatternAndAPlaceForTheResults) {
    Output output = collect({}, {"opt"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] project collect requires at least one glob pattern.\n");
    EXPECT_THAT(output.out, StartsWith("Usage:\n"));
    write("p/results", "a file");
    output = collect({"*"}, {"opt"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not create results directory: " + at("p/results") + "\n");
}

} // namespace
} // namespace morquill::project
