#include "project/choice.h"

#include "console/command_line.h"
#include "fixtures/project_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class Choice : public ProjectTree {
  protected:
    /// What a choice printed; its status is 1 when there was one.
    template <class Choose>
    Output printed(Choose choose) {
        return run("", [&] { return choose().has_value(); });
    }
    /// The message of a line that a choice refuses, with the plain tag and nothing printed; otherwise what
    /// happened instead.
    template <class Choose>
    std::string refusal(Choose choose) {
        std::string message = "not refused";
        const Output output = run("", [&] {
            try {
                (void)choose();
            } catch (const console::UsageError& error) {
                message = error.tag() == console::ErrorTag::plain ? error.message() : "another tag";
            }
            return 0;
        });
        return output.out.empty() && output.err.empty() ? message : "printed: " + output.out + output.err;
    }
};

TEST_F(Choice, BlocksAreChosenByNameAndPattern) {
    const auto chosen = chooseBlocks(options(ProjectSubCommand::Exec, {"s*", "opt"}));
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->root, project());
    EXPECT_EQ(chosen->file, templateFile());
    EXPECT_THAT(chosen->selected, ElementsAre("soc", "opt"));
}

TEST_F(Choice, WithoutProjectOrNamesTheLineIsRefused) {
    auto wanted = options(ProjectSubCommand::Exec, {"opt"});
    wanted.path = "nowhere";
    EXPECT_EQ(refusal([&] { return chooseBlocks(wanted); }),
              "could not resolve a .projmq project template from path: " + at("nowhere"));
    EXPECT_EQ(refusal([&] { return chooseBlocks(options(ProjectSubCommand::Exec, {})); }),
              "specify at least one task block with -n/--name.");
    EXPECT_EQ(refusal([&] { return chooseBlocks(options(ProjectSubCommand::Exec, {"no"})); }),
              "task block not found in .projmq: no\navailable task blocks: opt, soc");
}

TEST_F(Choice, AProjectThatCannotBeReadIsReportedAlone) {
    write("q/q.projmq", "%oops\n");
    auto wanted = options(ProjectSubCommand::Exec, {"opt"});
    wanted.path = "q";
    const Output output = printed([&] { return chooseBlocks(wanted); });
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.err,
                StartsWith("[mqkit][ERROR] failed to parse task file: " + at("q/q.projmq") + ":1"));
    EXPECT_EQ(output.out, "");
}

TEST_F(Choice, CasesComeInOrder) {
    EXPECT_EQ(chooseCases(project()), cases());
    EXPECT_EQ(refusal([&] { return chooseCases(at("bin")); }),
              "no case subdirectories were found in project: " + at("bin"));
}

TEST_F(Choice, WorkIsDoneOnACaseOrAProject) {
    const auto whole = chooseWork("p", {"soc"}, "pick");
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->target.kind, TargetKind::Project);
    EXPECT_EQ(whole->target.projectRoot, project());
    EXPECT_THAT(whole->selected, ElementsAre("soc"));
    const auto one = chooseWork("p/m1", {"opt"}, "pick");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->target.caseFile, at("p/m1/m1.mq"));
    EXPECT_THAT(one->selected, ElementsAre("opt"));
}

TEST_F(Choice, AnEmptyChoiceIsReportedAndIsOne) {
    std::optional<ChosenWork> work;
    Output output = run("\n", [&] {
        work = chooseWork("p/m1", {}, "pick");
        return 0;
    });
    EXPECT_EQ(output.out,
              "[mqkit] task file found: m1.mq\n\n[mqkit] pick\n\n[mqkit] available task blocks:\n  1. opt\n"
              "  2. soc\nInput index (e.g. 1 2 3 or 1,2,3): "
              "[mqkit] no task blocks were selected; exiting.\n");
    ASSERT_TRUE(work);
    EXPECT_THAT(work->selected, IsEmpty());
    output = printed([] { return chooseWork("p", {"no"}, "pick"); });
    EXPECT_EQ(output.status, 0);
    output = printed([] { return chooseWork("nowhere", {"opt"}, "pick"); });
    EXPECT_EQ(output.err, "[mqkit][ERROR] could not resolve a .projmq project template or case .mq file from "
                          "path: " +
                              at("nowhere") + "\n");
}

} // namespace
} // namespace morquill::project
