#include "support/directory.h"

#include "fixtures/scratch_tree.h"
#include "fixtures/unprivileged.h"

#include <cerrno>
#include <system_error>

#include <sys/stat.h>

namespace morquill {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Directory : public ScratchTree {
  protected:
    /// What a walk visits below the root: "<path> <kind as a number>"; `closed` is not gone into.
    [[nodiscard]] std::vector<std::string> walked(WalkOrder order, const std::string& closed = "") const {
        std::vector<std::string> seen;
        walkTree(root, order, [&](const std::string& path, EntryKind kind) {
            seen.push_back(path.substr(root.size() + 1) + " " + std::to_string(static_cast<int>(kind)));
            return path != at(closed);
        });
        return seen;
    }
};

TEST_F(Directory, NamesComeInByteOrder) {
    for (const char* name : {"b", "a", "Z", ".hidden"}) {
        write(name);
    }
    EXPECT_THAT(listDirectoryEntries(root), ElementsAre(".hidden", "Z", "a", "b"));
    EXPECT_THAT(listDirectoryEntries(at("missing")), IsEmpty());
}

TEST_F(Directory, NamesAreMatchedByAShellPattern) {
    for (const char* name : {"b.mq", "a.mq", ".mq", ".hidden", "[x]", "a b\n"}) {
        write(name);
    }
    EXPECT_THAT(listDirectoryEntries(root, "*"),
                ElementsAre(".hidden", ".mq", "[x]", "a b\n", "a.mq", "b.mq"));
    EXPECT_THAT(listDirectoryEntries(root, "*.mq"), ElementsAre(".mq", "a.mq", "b.mq"));
    EXPECT_THAT(listDirectoryEntries(root, "?.mq"), ElementsAre("a.mq", "b.mq"));
    EXPECT_THAT(listDirectoryEntries(root, "[!a]*.mq"), ElementsAre("b.mq"));
    EXPECT_THAT(listDirectoryEntries(root, "\\[x\\]"), ElementsAre("[x]"));
    EXPECT_THAT(listDirectoryEntries(root, "x/*"), IsEmpty());
    EXPECT_THAT(listDirectoryEntries(at("missing"), "*"), IsEmpty());
    EXPECT_THAT(listDirectoryEntries(at("a.mq"), "*"), IsEmpty());
}

TEST_F(Directory, EntriesHaveTheirKind) {
    write("file");
    dir("dir");
    link("dir", "link");
    ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
    const auto entries = readDirectory(root);
    ASSERT_TRUE(entries);
    std::vector<std::pair<std::string, EntryKind>> found;
    for (const auto& entry : *entries) {
        found.emplace_back(entry.name, entry.kind);
    }
    EXPECT_THAT(found,
                ElementsAre(std::pair("dir", EntryKind::directory), std::pair("fifo", EntryKind::other),
                            std::pair("file", EntryKind::file), std::pair("link", EntryKind::link)));
    for (const auto& [name, kind] : found) {
        EXPECT_EQ(kindOf(at(name)), kind) << name;
    }
    EXPECT_EQ(kindOf(at("missing")), EntryKind::other);
    EXPECT_FALSE(readDirectory(at("missing")));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(readDirectory(at("file")));
    EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(Directory, TheSearchForAnEntryEndsAtTheFirst) {
    write("a");
    write("b");
    int asked = 0;
    EXPECT_TRUE(anyDirectoryEntry(root, [&](const std::string&) { return ++asked == 1; }));
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(anyDirectoryEntry(root, [](const std::string& name) { return name == "c"; }));
    EXPECT_FALSE(anyDirectoryEntry(at("missing"), [](const std::string&) { return true; }));
}

TEST_F(Directory, AWalkByNameVisitsSubdirectoriesAfterTheirNeighbours) {
    write("b/c");
    write("a/z");
    write("a/y/x");
    write("m");
    link("a", "l");
    EXPECT_THAT(walked(WalkOrder::byName, "b"),
                ElementsAre("a 1", "b 1", "l 2", "m 0", "a/y 1", "a/z 0", "a/y/x 0"));
}

TEST_F(Directory, AWalkAsListedGoesIntoADirectoryAtOnce) {
    write("a/x");
    write("a/y");
    write("b/c/d");
    write("b/e/f");
    const auto seen = walked(WalkOrder::asListed, "b/e");
    EXPECT_THAT(seen,
                ::testing::UnorderedElementsAre("a 1", "a/x 0", "a/y 0", "b 1", "b/c 1", "b/c/d 0", "b/e 1"));
    const auto place = [&](const std::string& entry) {
        return std::find(seen.begin(), seen.end(), entry) - seen.begin();
    };
    EXPECT_EQ(std::min(place("a/x 0"), place("a/y 0")), place("a 1") + 1);
    EXPECT_EQ(place("b/c/d 0"), place("b/c 1") + 1);
    // The names of one directory in the order of the system's own listing.
    std::vector<std::string> listed;
    for (const auto& entry : std::filesystem::directory_iterator(root)) {
        listed.push_back(entry.path().filename().string() + " 1");
    }
    EXPECT_EQ(listed.front() == "a 1", place("a 1") < place("b 1"));
}

TEST_F(Directory, WhatIsThereAndCannotBeReadIsNotEmpty) {
    write("closed/a.mq");
    std::filesystem::permissions(root, std::filesystem::perms{0755});
    std::filesystem::permissions(at("closed"), std::filesystem::perms{0});
    {
        const Unprivileged user;
        const auto anything = [](const std::string& /*name*/) { return true; };
        EXPECT_THROW((void)listDirectoryEntries(at("closed")), std::system_error);
        EXPECT_THROW((void)listDirectoryEntries(at("closed"), "*.mq"), std::system_error);
        EXPECT_THROW((void)anyDirectoryEntry(at("closed"), anything), std::system_error);
        EXPECT_FALSE(anyDirectoryEntry(at("missing"), anything));
    }
    std::filesystem::permissions(at("closed"), std::filesystem::perms{0755});
}

TEST_F(Directory, AWalkReportsWhatItCannotRead) {
    std::vector<std::string> seen;
    for (const auto order : {WalkOrder::byName, WalkOrder::asListed}) {
        walkTree(at("none"), order, [&](const std::string& path, EntryKind kind) {
            EXPECT_EQ(kind, EntryKind::unreadable);
            seen.push_back(path);
            return true;
        });
    }
    EXPECT_THAT(seen, ElementsAre(at("none"), at("none")));
}

} // namespace
} // namespace morquill
