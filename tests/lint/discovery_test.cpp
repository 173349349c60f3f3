#include "lint/discovery.h"

#include "fixtures/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>

namespace morquill::lint {
namespace {

namespace fs = std::filesystem;

/// An empty directory of its own for each test.
class LintDiscovery : public ::testing::Test {
  protected:
    void touch(const std::string& name) const {
        fs::create_directories((root / name).parent_path());
        std::ofstream(root / name) << "x";
    }
    /// The files found, relative to the root.
    [[nodiscard]] std::string find(const std::vector<std::string>& names) const {
        std::vector<std::string> paths;
        for (const auto& name : names) {
            paths.push_back(root / name);
        }
        std::string found;
        for (const auto& path : findTaskFiles(paths)) {
            EXPECT_TRUE(path.starts_with(root.native() + "/")) << path;
            found += path.substr(root.native().size() + 1) + "\n";
        }
        return found;
    }
    TemporaryDirectory directory;
    fs::path root = directory.root();
};

TEST_F(LintDiscovery, WalksDirectoriesAndSortsByTheBytesOfThePath) {
    for (const auto* name :
         {"b/t.mq", "b.mq", "b-c/t.MQ", "B.mq", "a/x/y/z.Mq", "\xff.mq", "two\nlines.mq", ".hidden/t.mq"}) {
        touch(name);
    }
    for (const auto* name : {"t.projmq", "mq", ".mq", "t.mq.bak", "t.mq~", "a/tmq"}) {
        touch(name);
    }
    EXPECT_EQ(find({"."}),
              ".hidden/t.mq\nB.mq\na/x/y/z.Mq\nb-c/t.MQ\nb.mq\nb/t.mq\ntwo\nlines.mq\n\xff.mq\n");
}

TEST_F(LintDiscovery, TakesEachFileOnce) {
    touch("a/t.mq");
    touch("b.mq");
    EXPECT_EQ(find({"a", "b.mq", "a/t.mq", "a/../b.mq", "./a/."}), "a/t.mq\nb.mq\n");
}

TEST_F(LintDiscovery, PassesOverWhatItDoesNotTake) {
    touch("notes.txt");
    touch("a/t.mq");
    fs::create_directory(root / "dir.mq");
    ASSERT_EQ(::mkfifo((root / "pipe.mq").c_str(), 0600), 0);
    EXPECT_EQ(find({"notes.txt", "missing", "missing.mq", "notes.txt/t.mq", "pipe.mq", "dir.mq"}), "");
    EXPECT_EQ(find({"."}), "a/t.mq\n");
    EXPECT_TRUE(findTaskFiles({""}).empty());
    EXPECT_TRUE(findTaskFiles({}).empty());
    EXPECT_TRUE(findTaskFiles({std::string(10'000, 'x') + ".mq"}).empty());
}

TEST_F(LintDiscovery, FollowsNoLinksInATree) {
    touch("tree/t.mq");
    touch("elsewhere/u.mq");
    fs::create_directory_symlink(root / "elsewhere", root / "tree/linked");
    fs::create_directory_symlink(root / "tree", root / "tree/loop");
    fs::create_symlink(root / "elsewhere/u.mq", root / "tree/u.mq");
    fs::create_symlink(root / "nowhere", root / "tree/dangling.mq");
    EXPECT_EQ(find({"tree"}), "tree/t.mq\n");
    // A link that was named counts as its target.
    EXPECT_EQ(find({"tree/linked"}), "elsewhere/u.mq\n");
    EXPECT_EQ(find({"tree/u.mq", "tree/dangling.mq"}), "elsewhere/u.mq\n");
}

TEST_F(LintDiscovery, ContinuesAfterADirectoryThatItCannotOpen) {
    // Too long a path is what not even the superuser can open.
    const std::string name(250, 'b');
    touch("a/t.mq");
    touch("c/t.mq");
    touch(name + "/" + name + "/t.mq");
    const fs::path before = fs::current_path();
    fs::current_path(root);
    for (int depth = 0; depth < 20; ++depth) {
        fs::create_directory(name);
        fs::current_path(name);
        std::ofstream("u.mq") << "x";
    }
    fs::current_path(before);
    const std::string found = find({"."});
    EXPECT_THAT(found, ::testing::StartsWith("a/t.mq\n" + name + "/"));
    EXPECT_THAT(found, ::testing::HasSubstr("\n" + name + "/" + name + "/t.mq\n"));
    EXPECT_THAT(found, ::testing::EndsWith("/u.mq\nc/t.mq\n"));
    EXPECT_LT(std::count(found.begin(), found.end(), '\n'), 20);
}

} // namespace
} // namespace morquill::lint
