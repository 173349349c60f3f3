#include "project/update_script.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/golden.h"
#include "fixtures/scratch_tree.h"

#include <functional>
#include <utility>

#include <sys/stat.h>

namespace morquill::project {
namespace {

using UpdateScript = ScratchTree;

// Every byte of it is promised.
const std::string wholeScript = golden::text("mqkit_update_comd.sh");

TEST_F(UpdateScript, IsWrittenByteForByte) {
    EXPECT_EQ(formatComdRunnerScript(root, {at("m 1"), at("m2")}, {"opt", "it's"}), wholeScript);
}

TEST_F(UpdateScript, OfACaseNamesItsBlocksAlone) {
    EXPECT_THAT(formatComdRunnerScript(at("m1"), {at("m1")}, {"opt"}),
                ::testing::HasSubstr("\nrun_comd 'm1 / $opt' 'opt'\n"));
}

TEST_F(UpdateScript, ReplacesAnOlderOneAndCanBeExecuted) {
    write("mqkit_update_comd.sh", std::string(100000, '#'));
    const auto path = comdRunnerScriptPath(root);
    EXPECT_EQ(path, at("mqkit_update_comd.sh"));
    EXPECT_TRUE(writeComdRunnerScript(root, {at("m 1"), at("m2")}, {"opt", "it's"}));
    EXPECT_EQ(readTextFile(path), wholeScript);
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0755U, 0755U);
}

TEST_F(UpdateScript, IsNotWrittenWhereItCannotBe) {
    dir("mqkit_update_comd.sh");
    EXPECT_FALSE(writeComdRunnerScript(root, {at("m1")}, {"opt"}));
}

TEST_F(UpdateScript, IsANewFileWhateverStoodInItsPlace) {
    write("precious.txt", "old");
    mode("precious.txt", 0640);
    const auto script = at("mqkit_update_comd.sh");
    const auto precious = at("precious.txt");
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"a link", [&] { link("precious.txt", "mqkit_update_comd.sh"); }},
        {"a link to nowhere", [&] { link("made.txt", "mqkit_update_comd.sh"); }},
        {"a further name", [&] { std::filesystem::create_hard_link(precious, script); }},
        {"a pipe", [&] { ASSERT_EQ(::mkfifo(script.c_str(), 0600), 0); }},
        {"a file that may not be written",
         [&] { write("mqkit_update_comd.sh"), mode("mqkit_update_comd.sh", 0400); }},
    };
    for (const auto& [name, put] : rows) {
        std::filesystem::remove(script);
        put();
        EXPECT_TRUE(writeComdRunnerScript(root, {at("m 1"), at("m2")}, {"opt", "it's"})) << name;
        EXPECT_EQ(tree(),
                  (std::vector<std::string>{"mqkit_update_comd.sh = " + wholeScript, "precious.txt = old"}))
            << name;
        struct stat info {};
        ASSERT_EQ(::stat(script.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0755U, 0755U) << name;
        ASSERT_EQ(::stat(precious.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777U, 0640U) << name;
    }
}

TEST_F(UpdateScript, ThatCannotBeWrittenInWholeLeavesWhatWasThere) {
    for (const bool withOlder : {false, true}) {
        if (withOlder) {
            write("mqkit_update_comd.sh", "#!/bin/sh\n");
        }
        const FileSizeLimit limit(1000);
        EXPECT_FALSE(writeComdRunnerScript(root, {at("m1")}, {"opt"}));
        const auto left = tree();
        EXPECT_EQ(left.size(), withOlder ? 1U : 0U);
        EXPECT_THAT(left, ::testing::Each("mqkit_update_comd.sh = #!/bin/sh\n"));
    }
}

} // namespace
} // namespace morquill::project
