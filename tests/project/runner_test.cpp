#include "project/runner.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/project_tree.h"

#include <filesystem>

namespace morquill::project {
namespace {

class Runner : public ProjectTree {};

TEST_F(Runner, IsFoundAsTheProjectSaysIt) {
    const auto before = std::filesystem::current_path();
    EXPECT_EQ(resolveRunner(project()), "mqrun");
    write("p/tools/mqrun", "#!/bin/sh\n");
    mode("p/tools/mqrun", 0755);
    {
        const console::testing::ScopedEnv configured("MORQUILL_MQRUN_PATH", "tools/mqrun");
        EXPECT_EQ(resolveRunner(project()), at("p/tools/mqrun")); // from the project root
    }
    write("p/morquill.conf", "MORQUILL_MQRUN_PATH = $MORQUILL_CONFIG_DIR/tools/mqrun\n");
    EXPECT_EQ(resolveRunner(project()), at("p/tools/mqrun"));
    write("p/morquill.conf", "MORQUILL_MQRUN_PATH = none/mqrun:$PWD/tools/mqrun\n");
    EXPECT_EQ(resolveRunner(project()), at("p/tools/mqrun"));
    write("morquill.conf", "MORQUILL_MQRUN_PATH = elsewhere\n"); // where the program runs counts for nothing
    write("p/morquill.conf", "MORQUILL_MQRUN_PATH = mqrun\n");
    const console::testing::ScopedEnv programs("PATH", "/none:tools");
    EXPECT_EQ(resolveRunner(project()), at("p/tools/mqrun"));
    link("p", "linked");
    EXPECT_EQ(resolveRunner(at("linked")), at("p/tools/mqrun"));
    EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST(RunnerCommand, IsQuotedForAShell) {
    EXPECT_EQ(runnerCommand("/opt/it's/mqrun", "/p 1"), R"('/opt/it'\''s/mqrun' kick --path '/p 1')");
    EXPECT_EQ(noRunner("mqrun"), "configured project runner not found: mqrun");
}

TEST_F(Runner, IsStartedInTheProjectAndItsFailureReported) {
    sibling("mqrun", "echo run \"$@\" in \"$(pwd -P)\" >>\"$HOME\"");
    EXPECT_EQ(runRunner("mqrun", project()), std::nullopt);
    EXPECT_EQ(readTextFile(at("home")), "run kick --path " + project() + " in " + project() + "\n");
    sibling("mqrun", "exit 3");
    EXPECT_TRUE(runRunner("mqrun", project()).has_value());
}

} // namespace
} // namespace morquill::project
