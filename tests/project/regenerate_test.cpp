#include "project/regenerate.h"

#include "fixtures/project_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

class Regenerate : public ProjectTree {};

TEST_F(Regenerate, AProjectIsOpenedWithAllItsCases) {
    const auto place = openProject(project(), templateFile(), {"opt"}, updateWords);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->kind, TargetKind::Project);
    EXPECT_EQ(place->directory, project());
    EXPECT_EQ(place->file, templateFile());
    EXPECT_EQ(place->caseDirs, cases());
    const auto one = openCase(at("p/m1"), at("p/m1/m1.mq"), {"opt"}, rebuildWords);
    ASSERT_TRUE(one);
    EXPECT_EQ(one->kind, TargetKind::Case);
    EXPECT_THAT(one->caseDirs, ElementsAre(at("p/m1")));
}

TEST_F(Regenerate, WhatCannotBeOpenedIsToldBeforeAnythingIsTouched) {
    const auto errorOf = [this](auto open) { return run("", [&] { return open().has_value(); }).err; };
    EXPECT_EQ(errorOf([&] { return openProject(project(), templateFile(), {}, updateWords); }),
              "[mqkit][ERROR] no task blocks were selected for update\n");
    EXPECT_EQ(errorOf([&] { return openCase(at("p/m1"), at("p/m1/m1.mq"), {}, rebuildWords); }),
              "[mqkit][ERROR] no task blocks were selected for rebuild\n");
    EXPECT_EQ(errorOf([&] { return openProject(at("bin"), templateFile(), {"opt"}, updateWords); }),
              "[mqkit][ERROR] no case subdirectories were found in project: " + at("bin") + "\n");
    EXPECT_EQ(errorOf([&] { return openCase(at("none"), at("p/m1/m1.mq"), {"opt"}, updateWords); }),
              "[mqkit][ERROR] case directory does not exist: " + at("none") + "\n");
    EXPECT_EQ(errorOf([&] { return openCase(at("p/m1"), at("p/m1/no.mq"), {"opt"}, updateWords); }),
              "[mqkit][ERROR] case .mq file does not exist: " + at("p/m1/no.mq") + "\n");
}

TEST_F(Regenerate, TheGeneratorRunsInItsPlaceWithItsMode) {
    sibling("morquill", "pwd -P >\"$HOME\"; echo \"$@\" >>\"$HOME\"; [ \"$2\" = --comd-only ]");
    const WorkPlace place{TargetKind::Project, project(), templateFile(), cases()};
    EXPECT_EQ(runGenerator(place, updateWords), std::nullopt);
    EXPECT_EQ(readTextFile(at("home")), project() + "\n" + templateFile() + " --comd-only\n");
    EXPECT_EQ(runGenerator(place, rebuildWords), "program 'morquill' exited with code 1");
    EXPECT_EQ(readTextFile(at("home")), project() + "\n" + templateFile() + "\n");
}

TEST_F(Regenerate, ShowsWhatItIsAboutToDo) {
    const WorkPlace place{TargetKind::Case, "/p/m 1", "/p/m 1/a.mq", {"/p/m 1"}};
    const auto shown = [this](auto print) {
        return run("",
                   [&] {
                       print();
                       return 0;
                   })
            .out;
    };
    EXPECT_EQ(shown([&] {
                  printWorkHeader(place, {"a", "b"}, console::RunMode::dryRun, rebuildWords);
              }),
              "\n[MQ Rebuild]\n  case directory: /p/m 1\n  task file: /p/m 1/a.mq\n  task blocks: $a, $b\n"
              "  mode: dry-run (no files written)\n  morquill mode: full\n\n");
    EXPECT_EQ(shown([&] { printGeneratorCommand(place, console::RunMode::apply, updateWords); }),
              "\n[mqkit] execute morquill '/p/m 1/a.mq' --comd-only\n");
    EXPECT_EQ(shown([&] { printGeneratorCommand(place, console::RunMode::dryRun, rebuildWords); }),
              "\n[mqkit][DRY-RUN] morquill '/p/m 1/a.mq'\n");
}

} // namespace
} // namespace morquill::project
