#include "system/new_file.h"

#include "fixtures/file_size_limit.h"
#include "fixtures/scratch_tree.h"

#include <sys/stat.h>

namespace morquill::system {
namespace {

using ::testing::ElementsAre;

class NewFile : public ScratchTree {};

TEST_F(NewFile, IsACopyInBytesAndPermissions) {
    const std::string text = std::string(200'000, 'x') + std::string("\0\xff", 2);
    write("source", text);
    mode("source", 0440);
    EXPECT_FALSE(copyToNewFile(at("source"), at("target")));
    EXPECT_TRUE(readTextFile(at("target")) == text);
    struct stat info {};
    ASSERT_EQ(::stat(at("target").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0440U);
    EXPECT_FALSE(writeNewFile(at("written"), "text"));
    EXPECT_EQ(readTextFile(at("written")), "text");
}

TEST_F(NewFile, IsNeverMadeOverAnythingElse) {
    write("source", "new");
    write("file", "old");
    link("nowhere", "link");
    for (const std::string name : {"file", "link"}) {
        EXPECT_EQ(copyToNewFile(at("source"), at(name)), std::errc::file_exists) << name;
        EXPECT_EQ(writeNewFile(at(name), "new"), std::errc::file_exists) << name;
    }
    EXPECT_THAT(tree(), ElementsAre("file = old", "link -> nowhere", "source = new"));
}

TEST_F(NewFile, ThatCannotBeWholeLeavesNothing) {
    write("source", "too long");
    dir("dir");
    ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);
    {
        const FileSizeLimit limit(3);
        EXPECT_EQ(copyToNewFile(at("source"), at("target")), std::errc::file_too_large);
        EXPECT_EQ(writeNewFile(at("target"), "1234"), std::errc::file_too_large);
    }
    EXPECT_EQ(copyToNewFile(at("missing"), at("target")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(copyToNewFile(at("dir"), at("target")), std::errc::invalid_argument);
    EXPECT_EQ(copyToNewFile(at("fifo"), at("target")), std::errc::invalid_argument);
    EXPECT_EQ(copyToNewFile(at("source"), at("missing/target")), std::errc::no_such_file_or_directory);
    std::filesystem::remove(at("fifo"));
    EXPECT_THAT(tree(), ElementsAre("dir/", "source = too long"));
}

} // namespace
} // namespace morquill::system
