#include "system/copy_item.h"
#include "system/signal_guard.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <array>
#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace morquill::system {
namespace {

using ::testing::ElementsAre;

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

TEST_F(CopyItem, NeverWritesThroughALinkAtTheTarget) {
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

/// The host part of the names of unfinished copies.
std::string unfinished(pid_t process) {
    std::array<char, 65> host{};
    EXPECT_EQ(::gethostname(host.data(), host.size() - 1), 0);
    return ".mqkit-" + std::string(host.data()) + "-" + std::to_string(process) + "-0";
}

TEST_F(CopyItem, StopsAtASignalAndTakesTheUnfinishedCopyAway) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        std::signal(SIGTERM, SIG_DFL);
        dir("plot");
        write("plot/a", "1");
        dir("results");
        const SignalGuard guard;
        ::raise(SIGTERM);
        const bool copied =
            copyItem(at("plot"), at("results/plot")) || copyItem(at("plot/a"), at("results/a"));
        write("copied", copied ? "yes" : "no");
        ::_exit(42);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(readTextFile(at("copied")), "no");
    EXPECT_THAT(tree("results"), ElementsAre());
}

TEST_F(CopyItem, RemovesTheUnfinishedCopiesOfProcessesThatAreGone) {
    const pid_t gone = ::fork();
    if (gone == 0) {
        ::_exit(0);
    }
    ASSERT_EQ(::waitpid(gone, nullptr, 0), gone);
    write("results/" + unfinished(gone) + "/half", "1");
    write("results/" + unfinished(gone) + "1", "2");
    write("results/" + unfinished(::getpid()), "alive");
    write("results/.mqkit-elsewhere.x-" + std::to_string(gone) + "-0", "of another host");
    write("results/" + unfinished(gone) + "x", "no number");
    write("results/opt.log", "3");
    removeStaleCopies(at("results"));
    EXPECT_THAT(tree("results"), ::testing::UnorderedElementsAre(
                                     unfinished(::getpid()) + " = alive",
                                     ".mqkit-elsewhere.x-" + std::to_string(gone) + "-0 = of another host",
                                     unfinished(gone) + "x = no number", "opt.log = 3"));
    removeStaleCopies(at("none"));
}

} // namespace
} // namespace morquill::system
