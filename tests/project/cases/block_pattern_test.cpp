#include "project/cases/block_pattern.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::ElementsAre;

class BlockPattern : public ScratchTree {
  protected:
    BlockPattern() {
        for (const char* name :
             {"a.png", "b.log", ".hidden.png", "plot/c.png", "plot/d.txt", "plot/deep/e.png"}) {
            write(name, name);
        }
        write("plot.png/inside", "");
        link("a.png", "link.png");
        link("plot", "plotlink");
        link("nowhere", "dangling.png");
    }
};

TEST_F(BlockPattern, PicksNamesOrPathsInByteOrder) {
    struct Row {
        const char* pattern;
        std::vector<std::string> matches;
    };
    const Row rows[] = {
        {"", {}},
        {"/", {}},
        {"*.png", {".hidden.png", "a.png", "dangling.png", "link.png", "plot.png"}},
        {"?.png", {"a.png"}},
        {"[ab].*", {"a.png", "b.log"}},
        {"plot", {"plot"}},
        {"plot//", {"plot"}},
        {"plot/*.png", {"plot/c.png"}},
        {"plot\\*.png", {"plot/c.png"}},
        {"*/*.png", {"plot/c.png"}},
        {"*/*/*.png", {"plot/deep/e.png"}},
        {"*/*", {"plot.png/inside", "plot/c.png", "plot/d.txt"}},
        {"plot/deep", {}},  // below the top only files count
        {"plotlink/*", {}}, // links are not entered
        {"..", {}},
        {"../*", {}},
        {"plot/../a.png", {}},
        {"/etc/*", {}},
        {"none", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(expandBlockPattern(root, row.pattern, MatchedKind::any), row.matches) << row.pattern;
    }
}

TEST_F(BlockPattern, CanBeLimitedToDirectories) {
    EXPECT_THAT(expandBlockPattern(root, "p*", MatchedKind::directories),
                ElementsAre("plot", "plot.png", "plotlink"));
    EXPECT_THAT(expandBlockPattern(at("missing"), "*", MatchedKind::any), ElementsAre());
    EXPECT_THAT(expandBlockPattern(at("missing"), "*/*", MatchedKind::any), ElementsAre());
}

} // namespace
} // namespace morquill::project
