#include "project/cases/block_pattern.h"
#include "system/copy_item.h"
#include "system/tree_walk.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <sys/stat.h>

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
        EXPECT_EQ(expandBlockPattern(root, row.pattern, false), row.matches) << row.pattern;
    }
}

TEST_F(BlockPattern, CanBeLimitedToDirectories) {
    EXPECT_THAT(expandBlockPattern(root, "p*", true), ElementsAre("plot", "plot.png", "plotlink"));
    EXPECT_THAT(expandBlockPattern(at("missing"), "*", false), ElementsAre());
    EXPECT_THAT(expandBlockPattern(at("missing"), "*/*", false), ElementsAre());
}

using CopyItem = ScratchTree;

TEST_F(CopyItem, CopiesAFileOverAnotherWithItsMode) {
    write("a.sh", "new");
    ASSERT_EQ(::chmod(at("a.sh").c_str(), 0750), 0);
    write("to/a.sh", "an older and longer text");
    EXPECT_TRUE(system::copyItem(at("a.sh"), at("to/a.sh")));
    EXPECT_TRUE(system::copyItem(at("a.sh"), at("made/on/the/way")));
    EXPECT_THAT(tree("to"), ElementsAre("a.sh = new"));
    EXPECT_EQ(readTextFile(at("made/on/the/way")), "new");
    struct stat info {};
    ASSERT_EQ(::stat(at("to/a.sh").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0750U);
}

TEST_F(CopyItem, CopiesLinksAsLinks) {
    write("a", "text");
    link("a", "link");
    write("to/link", "older");
    EXPECT_TRUE(system::copyItem(at("link"), at("to/link")));
    EXPECT_TRUE(system::copyItem(at("link"), at("to/second")));
    EXPECT_THAT(tree("to"), ElementsAre("link -> a", "second -> a"));
}

TEST_F(CopyItem, NeverWritesThroughALinkThatStandsAtTheTarget) {
    write("precious", "old");
    write("a", "new");
    link("../precious", "to/a");
    EXPECT_TRUE(system::copyItem(at("a"), at("to/a")));
    EXPECT_EQ(readTextFile(at("precious")), "old");
    EXPECT_THAT(tree("to"), ElementsAre("a = new"));
}

TEST_F(CopyItem, ReplacesADirectoryAsAWhole) {
    write("plot/a.png", "1");
    write("plot/deep/b.png", "2");
    dir("plot/empty");
    link("a.png", "plot/link");
    link("/nowhere", "plot/dangling");
    link("deep", "plot/dirlink");
    write("to/plot/stale", "");
    write("to/file", "");
    const std::vector<std::string> copied{"a.png = 1",      "dangling -> /nowhere", "deep/",
                                          "deep/b.png = 2", "dirlink -> deep",      "empty/",
                                          "link -> a.png"};
    EXPECT_TRUE(system::copyItem(at("plot"), at("to/plot")));
    EXPECT_EQ(tree("to/plot"), copied);
    EXPECT_TRUE(system::copyItem(at("plot"), at("to/plot")));
    EXPECT_EQ(tree("to/plot"), copied);
    EXPECT_TRUE(system::copyItem(at("plot"), at("to/file")));
    EXPECT_EQ(tree("to/file"), copied);
}

TEST_F(CopyItem, RefusesWhatIsMissingOrOfAnotherKind) {
    link("nowhere", "dangling");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    dir("to/dir");
    write("a", "text");
    EXPECT_FALSE(system::copyItem(at("missing"), at("to/x")));
    EXPECT_FALSE(system::copyItem(at("dangling"), at("to/x")));
    EXPECT_FALSE(system::copyItem(at("pipe"), at("to/x")));
    EXPECT_FALSE(system::copyItem(at("a"), at("to/dir")));
    EXPECT_FALSE(system::copyItem(at("a"), at("a")));
    EXPECT_FALSE(system::copyItem(at("a"), at("a/b")));
    EXPECT_THAT(tree("to"), ElementsAre("dir/"));
    EXPECT_EQ(readTextFile(at("a")), "text");
}

TEST_F(CopyItem, ADirectoryWithAPipeInItIsCopiedWithoutIt) {
    write("plot/z", "1");
    ASSERT_EQ(::mkfifo(at("plot/pipe").c_str(), 0600), 0);
    EXPECT_FALSE(system::copyItem(at("plot"), at("to/plot")));
    EXPECT_THAT(tree("to/plot"), ElementsAre("z = 1"));
}

TEST_F(CopyItem, LeavesNoHalfOfAFileOnAFullDisk) {
    write("a", std::string(1000, 'x'));
    const FileSizeLimit limit(500);
    EXPECT_FALSE(system::copyItem(at("a"), at("to/a")));
    EXPECT_THAT(tree("to"), ElementsAre());
}

TEST_F(CopyItem, CopiesFilesWhoseSizeTheSystemDoesNotTell) {
    EXPECT_TRUE(system::copyItem("/proc/self/status", at("status")));
    EXPECT_THAT(readTextFile(at("status")).value_or(""), ::testing::HasSubstr("VmSize"));
}

using TreeWalk = ScratchTree;

TEST_F(TreeWalk, VisitsEntriesByNameAndSubdirectoriesAfterThem) {
    write("b/c", "");
    write("a/z", "");
    write("a/y/x", "");
    write("m", "");
    link("a", "l");
    std::vector<std::string> seen;
    system::walkTree(root, [&](const std::string& path, system::EntryKind kind) {
        seen.push_back(path.substr(root.size() + 1) + " " + std::to_string(static_cast<int>(kind)));
        return path != at("b");
    });
    EXPECT_THAT(seen, ElementsAre("a 1", "b 1", "l 2", "m 0", "a/y 1", "a/z 0", "a/y/x 0"));
}

TEST_F(TreeWalk, TellsWhatItCannotRead) {
    std::vector<std::string> seen;
    system::walkTree(at("none"), [&](const std::string& path, system::EntryKind kind) {
        EXPECT_EQ(kind, system::EntryKind::unreadable);
        seen.push_back(path);
        return true;
    });
    EXPECT_THAT(seen, ElementsAre(at("none")));
}

} // namespace
} // namespace morquill::project
