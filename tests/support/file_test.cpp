#include "support/file.h"

#include "fixtures/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill {
namespace {

namespace fs = std::filesystem;

class File : public ::testing::Test {
  protected:
    [[nodiscard]] std::string at(const std::string& name) const { return (dir / name).string(); }

  private:
    TemporaryDirectory top_;

  protected:
    const fs::path dir = top_.root();
};

TEST_F(File, ReadsBackEveryByteThatWasWritten) {
    const std::string bytes("a\0b\r\n\xff", 6);
    ASSERT_TRUE(writeTextFile(at("x"), bytes));
    EXPECT_EQ(readTextFile(at("x")), bytes);
    ASSERT_TRUE(writeTextFile(at("x"), ""));
    EXPECT_EQ(readTextFile(at("x")), "");
}

TEST_F(File, OnlyRegularFilesAreRead) {
    EXPECT_EQ(readTextFile(at("missing")), std::nullopt);
    EXPECT_EQ(readTextFile(dir.string()), std::nullopt);
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(readTextFile(at("pipe")), std::nullopt);
    EXPECT_EQ(readTextFile("/dev/null"), std::nullopt);
}

TEST_F(File, AFileThatNoMemoryHoldsIsNotRead) {
    ASSERT_TRUE(writeTextFile(at("huge"), "x"));
    ASSERT_EQ(::truncate(at("huge").c_str(), off_t{1} << 42), 0);
    EXPECT_EQ(readTextFile(at("huge")), std::nullopt);
}

TEST_F(File, AnInputFileMayBeAPipe) {
    ASSERT_TRUE(writeTextFile(at("x"), "text"));
    EXPECT_EQ(readInputFile(at("x")), "text");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    // More than a pipe holds at once, in two portions.
    const std::string half(100'000, 'h');
    std::thread writer([&] {
        const int fd = ::open(at("pipe").c_str(), O_WRONLY);
        for (std::string_view rest : {std::string_view(half), std::string_view(half)}) {
            while (!rest.empty()) {
                const auto put = ::write(fd, rest.data(), rest.size());
                rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(put, 0)));
            }
        }
        ::close(fd);
    });
    EXPECT_EQ(readInputFile(at("pipe")), half + half);
    writer.join();
}

TEST_F(File, AnInputFileMayBeATerminal) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    const std::string typed = "one\ntwo\n\x04"; // Ctrl-D ends the input
    ASSERT_EQ(::write(terminal, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    EXPECT_EQ(readInputFile(::ptsname(terminal)), "one\ntwo\n");
    ::close(terminal);
}

TEST_F(File, OtherKindsOfFilesAreNoInput) {
    EXPECT_EQ(readInputFile(at("missing")), std::nullopt);
    EXPECT_EQ(readInputFile(dir.string()), std::nullopt);
    EXPECT_EQ(readInputFile("/dev/null"), std::nullopt);
    EXPECT_EQ(readInputFile("/dev/zero"), std::nullopt);
    ASSERT_TRUE(writeTextFile(at("x"), "text"));
    EXPECT_EQ(readInputFile(at("x") + std::string("\0y", 2)), std::nullopt);
}

TEST_F(File, WritingMakesNoParentDirectories) {
    EXPECT_FALSE(writeTextFile(at("no/such/file"), "x"));
    EXPECT_FALSE(fs::exists(at("no")));
}

TEST_F(File, AFullDiskIsAFailure) {
    EXPECT_FALSE(writeTextFile("/dev/full", "x"));
}

TEST_F(File, KindTestsFollowLinksAndSwallowErrors) {
    ASSERT_TRUE(writeTextFile(at("x"), ""));
    fs::create_symlink("x", at("link"));
    fs::create_symlink("loop", at("loop"));
    EXPECT_TRUE(isRegularFile(at("link")));
    EXPECT_FALSE(isRegularFile(at("loop")));
    EXPECT_TRUE(isDirectory(dir.string()));
    EXPECT_FALSE(isDirectory(at("x")));
    EXPECT_FALSE(isDirectory(at("loop")));
}

// That they throw where the disk fails is tested with failing system calls (tests/faults).
TEST_F(File, LookUpsAnswerLikeKindTests) {
    ASSERT_TRUE(writeTextFile(at("x"), ""));
    fs::create_symlink("x", at("link"));
    fs::create_symlink("loop", at("loop"));
    const std::string longName(300, 'x');
    EXPECT_TRUE(lookUpRegularFile(at("link")));
    EXPECT_TRUE(lookUpDirectory(dir.string()));
    EXPECT_FALSE(lookUpDirectory(at("link")));
    EXPECT_FALSE(lookUpRegularFile(dir.string()));
    for (const std::string& name : {std::string("none"), std::string("loop"), std::string("x/x"), longName}) {
        EXPECT_FALSE(lookUpRegularFile(at(name))) << name;
        EXPECT_FALSE(lookUpDirectory(at(name))) << name;
    }
}

} // namespace
} // namespace morquill
