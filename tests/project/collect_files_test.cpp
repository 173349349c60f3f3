#include "project/block_pattern.h"
#include "project/copy_item.h"
#include "project/tree_walk.h"

#include "file_size_limit.h"
#include "scratch_tree.h"

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
    EXPECT_TRUE(copyItem(at("a.sh"), at("to/a.sh")));
    EXPECT_TRUE(copyItem(at("a.sh"), at("made/on/the/way")));
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
    EXPECT_TRUE(copyItem(at("link"), at("to/link")));
    EXPECT_TRUE(copyItem(at("link"), at("to/second")));
    EXPECT_THAT(tree("to"), ElementsAre("link -> a", "second -> a"));
}

TEST_F(CopyItem, NeverWritesThroughALinkThatStandsAtTheTarget) {
    write("precious", "old");
    write("a", "new");
    link("../precious", "to/a");
    EXPECT_TRUE(copyItem(at("a"), at("to/a")));
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
    EXPECT_TRUE(copyItem(at("plot"), at("to/plot")));
    EXPECT_EQ(tree("to/plot"), copied);
    EXPECT_TRUE(copyItem(at("plot"), at("to/plot")));
    EXPECT_EQ(tree("to/plot"), copied);
    EXPECT_TRUE(copyItem(at("plot"), at("to/file")));
    EXPECT_EQ(tree("to/file"), copied);
}

TEST_F(CopyItem, RefusesWhatIsMissingOrOfAnotherKind) {
    link("nowhere", "dangling");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    dir("to/dir");
    write("a", "text");
    EXPECT_FALSE(copyItem(at("missing"), at("to/x")));
    EXPECT_FALSE(copyItem(at("dangling"), at("to/x")));
    EXPECT_FALSE(copyItem(at("pipe"), at("to/x")));
    EXPECT_FALSE(copyItem(at("a"), at("to/dir")));
    EXPECT_FALSE(copyItem(at("a"), at("a")));
    EXPECT_FALSE(copyItem(at("a"), at("a/b")));
    EXPECT_THAT(tree("to"), ElementsAre("dir/"));
    EXPECT_EQ(readTextFile(at("a")), "text");
}

TEST_F(CopyItem, ADirectoryWithAPipeInItIsCopiedWithoutIt) {
    write("plot/z", "1");
    ASSERT_EQ(::mkfifo(at("plot/pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copyItem(at("plot"), at("to/plot")));
    EXPECT_THAT(tree("to/plot"), ElementsAre("z = 1"));
}

TEST_F(CopyItem, LeavesNoHalfOfAFileOnAFullDisk) {
    write("a", std::string(1000, 'x'));
    const FileSizeLimit limit(500);
    EXPECT_FALSE(copyItem(at("a"), at("to/a")));
    EXPECT_THAT(tree("to"), ElementsAre());
}

TEST_F(CopyItem, CopiesFilesWhoseSizeTheSystemDoesNotTell) {
    EXPECT_TRUE(copyItem("/proc/self/status", at("status")));
    EXPECT_THAT(readTextFile(at("status")).value_or(""), ::testing::HasSubstr("VmSize"));
}

TEST_F(CopyItem, ReplacesAFileThatMayNotBeWritten) {
    write("a", "1");
    mode("a", 0444);
    dir("to");
    mode("to", 0777);
    const Unprivileged user;
    EXPECT_TRUE(copyItem(at("a"), at("to/a")));
    EXPECT_TRUE(copyItem(at("a"), at("to/a")));
    EXPECT_THAT(tree("to"), ElementsAre("a = 1"));
}

TEST_F(CopyItem, LeavesTheFurtherNamesOfAnOlderResultAlone) {
    write("a", "new");
    write("to/a", "old");
    std::filesystem::create_hard_link(at("to/a"), at("to/kept"));
    EXPECT_TRUE(copyItem(at("a"), at("to/a")));
    EXPECT_THAT(tree("to"), ElementsAre("a = new", "kept = old"));
}

TEST_F(CopyItem, KeepsTheOlderResultUntilTheNewOneIsWhole) {
    write("a", std::string(1000, 'x'));
    write("plot/big", std::string(1000, 'x'));
    write("to/a", "old");
    write("to/plot/old", "old");
    link("a", "to/link");
    const std::vector<std::string> before{"a = old", "link -> a", "plot/", "plot/old = old"};
    ASSERT_EQ(tree("to"), before);
    {
        const FileSizeLimit limit(500);
        EXPECT_FALSE(copyItem(at("a"), at("to/a")));
        EXPECT_FALSE(copyItem(at("a"), at("to/link")));
        EXPECT_FALSE(copyItem(at("plot"), at("to/plot")));
        EXPECT_FALSE(copyItem(at("plot"), at("to/a")));
        EXPECT_EQ(tree("to"), before);
    }
    ASSERT_EQ(::mkfifo(at("plot/pipe").c_str(), 0600), 0);
    EXPECT_FALSE(copyItem(at("plot"), at("to/plot")));
    EXPECT_EQ(tree("to"), before);
}

TEST_F(CopyItem, LetsALinkOrADirectoryTakeThePlaceOfAnything) {
    write("plot/a.png", "1");
    link("plot", "link");
    for (const char* standing : {"to/file", "to/dir/inner"}) {
        write(standing, "old");
    }
    link("/nowhere", "to/link");
    for (const char* target : {"to/file", "to/dir", "to/link"}) {
        EXPECT_TRUE(copyItem(at("plot"), at(target)));
        EXPECT_TRUE(copyItem(at("plot"), at(target)));
    }
    EXPECT_THAT(tree("to"),
                ElementsAre("dir/", "dir/a.png = 1", "file/", "file/a.png = 1", "link/", "link/a.png = 1"));
    for (const char* target : {"to/file", "to/dir", "to/link"}) {
        EXPECT_TRUE(copyItem(at("link"), at(target)));
        EXPECT_TRUE(copyItem(at("link"), at(target)));
    }
    EXPECT_THAT(tree("to"), ElementsAre("dir -> plot", "file -> plot", "link -> plot"));
}

TEST_F(CopyItem, NeverCopiesSomethingIntoItselfOrOverWhatHoldsIt) {
    write("plot/deep/a.png", "1");
    link("deep", "plot/link");
    link("plot/deep", "way");
    const auto before = tree();
    EXPECT_FALSE(copyItem(at("plot"), at("plot")));
    EXPECT_FALSE(copyItem(at("plot"), at("plot/new")));
    EXPECT_FALSE(copyItem(at("plot"), at("plot/deep/new")));
    EXPECT_FALSE(copyItem(at("plot"), at("way/new"))); // the same by another way
    EXPECT_FALSE(copyItem(at("plot/deep"), at("plot")));
    EXPECT_FALSE(copyItem(at("plot/link"), at("plot")));
    EXPECT_FALSE(copyItem(at("plot/link"), at("plot/link")));
    EXPECT_EQ(tree(), before);
    EXPECT_TRUE(copyItem(at("plot"), at("plot2"))); // a name that only begins alike
}

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
} // namespace morquill::project
