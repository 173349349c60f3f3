#include "system/tree_walk.h"

#include "fixtures/scratch_tree.h"

namespace morquill::system {
namespace {

using ::testing::ElementsAre;

using TreeWalk = ScratchTree;

TEST_F(TreeWalk, VisitsEntriesByNameAndSubdirectoriesAfterThem) {
    write("b/c", "");
    write("a/z", "");
    write("a/y/x", "");
    write("m", "");
    link("a", "l");
    std::vector<std::string> seen;
    walkTree(root, [&](const std::string& path, EntryKind kind) {
        seen.push_back(path.substr(root.size() + 1) + " " + std::to_string(static_cast<int>(kind)));
        return path != at("b");
    });
    EXPECT_THAT(seen, ElementsAre("a 1", "b 1", "l 2", "m 0", "a/y 1", "a/z 0", "a/y/x 0"));
}

TEST_F(TreeWalk, TellsWhatItCannotRead) {
    std::vector<std::string> seen;
    walkTree(at("none"), [&](const std::string& path, EntryKind kind) {
        EXPECT_EQ(kind, EntryKind::unreadable);
        seen.push_back(path);
        return true;
    });
    EXPECT_THAT(seen, ElementsAre(at("none")));
}

} // namespace
} // namespace morquill::system
