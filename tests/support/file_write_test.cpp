#include "support/file.h"

#include "fixtures/temporary_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace morquill {
namespace {

namespace fs = std::filesystem;

class FileWrite : public ::testing::Test {
  protected:
    FileWrite() { fs::permissions(dir, fs::perms(0777)); }
    [[nodiscard]] std::string at(const std::string& name) const { return (dir / name).string(); }

  private:
    TemporaryDirectory top_;

  protected:
    const fs::path dir = top_.root();
};

/// Runs the action in a child with the limit for files, past which a write fails; returns the child's wait
/// status.
template <class Action>
int inChildWithFileLimit(rlim_t bytes, Action action) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{bytes, bytes};
        const rlimit noCore{};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::setrlimit(RLIMIT_FSIZE, &small);
        ::_exit(action());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

/// 0 when the write failed for the reason, 1 when it succeeded, otherwise 100 and the reason.
int failedFor(int reason, const std::string& path, std::string_view text) {
    if (writeTextFile(path, text)) {
        return 1;
    }
    return errno == reason ? 0 : 100 + errno;
}

TEST_F(FileWrite, ReplacesShorterAndLongerContent) {
    const std::string bytes("a\0b\r\n\xff", 6);
    for (const std::string& text :
         {std::string("a long text"), bytes, std::string(), std::string(100'000, 'x')}) {
        ASSERT_TRUE(writeTextFile(at("x"), text));
        EXPECT_EQ(readTextFile(at("x")), text);
    }
}

TEST_F(FileWrite, AFileThatMayNotGrowKeepsItsOldBytes) {
    for (const std::size_t oldSize :
         {std::size_t{0}, std::size_t{10}, std::size_t{4096}, std::size_t{20'000}}) {
        const std::string old(oldSize, 'o');
        ASSERT_TRUE(writeTextFile(at("x"), old));
        const int status =
            inChildWithFileLimit(8192, [&] { return failedFor(EFBIG, at("x"), std::string(100'000, 'n')); });
        EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0) << oldSize;
        EXPECT_EQ(readTextFile(at("x")), old) << oldSize;
    }
}

TEST_F(FileWrite, ANewFileThatCannotBeWrittenInFullIsRemoved) {
    fs::create_symlink("target", at("link"));
    for (const char* name : {"new", "link"}) {
        EXPECT_EQ(
            inChildWithFileLimit(8192, [&] { return failedFor(EFBIG, at(name), std::string(100'000, 'n')); }),
            0);
    }
    EXPECT_FALSE(fs::exists(at("new")));
    EXPECT_FALSE(fs::exists(at("target")));
    EXPECT_TRUE(fs::is_symlink(at("link")));
}

TEST_F(FileWrite, AFullFileSystemIsFoundOutBeforeTheFirstByte) {
    fs::create_directory(at("full"));
    if (::mount("none", at("full").c_str(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "no file system of a given size can be mounted here";
    }
    const std::string old(10'000, 'o');
    EXPECT_TRUE(writeTextFile(at("full/x"), old));
    EXPECT_EQ(failedFor(ENOSPC, at("full/x"), std::string(100'000, 'n')), 0);
    EXPECT_EQ(readTextFile(at("full/x")), old);
    EXPECT_EQ(failedFor(ENOSPC, at("full/new"), std::string(100'000, 'n')), 0);
    EXPECT_FALSE(fs::exists(at("full/new")));
    // What was reserved is given back: what is left of the room takes a file of four pages.
    EXPECT_TRUE(writeTextFile(at("full/y"), std::string(16'000, 'y')));
    // A file needs no room for what it has already.
    while (writeTextFile(at("full/" + std::to_string(std::rand())), std::string(4096, 'z'))) {
    }
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(writeTextFile(at("full/x"), std::string(9'000, 'n')));
    EXPECT_EQ(readTextFile(at("full/x")), std::string(9'000, 'n'));
    EXPECT_EQ(::umount(at("full").c_str()), 0);
}

/// Runs the action as a user who owns nothing, when the test's own user may do everything.
template <class Action>
int asOrdinaryUser(Action action) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && ::setuid(65534) != 0) {
            ::_exit(2);
        }
        ::_exit(action());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(FileWrite, WhatMayNotBeWrittenStays) {
    ASSERT_TRUE(writeTextFile(at("x"), "old"));
    fs::permissions(at("x"), fs::perms(0444));
    EXPECT_EQ(asOrdinaryUser([&] { return failedFor(EACCES, at("x"), "new"); }), 0);
    EXPECT_EQ(readTextFile(at("x")), "old");
    EXPECT_EQ(failedFor(EISDIR, dir.string(), "new"), 0);
    EXPECT_EQ(failedFor(ENOENT, at("no/x"), "new"), 0);
    EXPECT_EQ(failedFor(ENOTDIR, at("x/y"), "new"), 0);
    EXPECT_EQ(failedFor(EINVAL, std::string("x\0y", 3), "new"), 0);
}

TEST_F(FileWrite, AFileThatMayOnlyBeWrittenIsWritten) {
    ASSERT_TRUE(writeTextFile(at("x"), "a longer old text"));
    fs::permissions(at("x"), fs::perms(0222));
    EXPECT_EQ(asOrdinaryUser([&] { return writeTextFile(at("x"), "new") ? 0 : 1; }), 0);
    fs::permissions(at("x"), fs::perms(0644));
    EXPECT_EQ(readTextFile(at("x")), "new");
}

TEST_F(FileWrite, TheFileItselfIsWrittenNotANewOneInItsPlace) {
    ASSERT_TRUE(writeTextFile(at("x"), "old"));
    fs::permissions(at("x"), fs::perms(0751));
    fs::create_hard_link(at("x"), at("second"));
    fs::create_symlink("x", at("link"));
    fs::create_symlink("made", at("dangling"));
    ASSERT_TRUE(writeTextFile(at("link"), "new"));
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_EQ(readTextFile(at("second")), "new");
    EXPECT_EQ(fs::status(at("x")).permissions(), fs::perms(0751));
    ASSERT_TRUE(writeTextFile(at("dangling"), "made"));
    EXPECT_EQ(readTextFile(at("made")), "made");
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir)) {
        ++entries;
    }
    EXPECT_EQ(entries, 5U);
}

TEST_F(FileWrite, APipeTakesTheTextFromItsOtherEnd) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    const std::string text(200'000, 'p'); // more than a pipe holds
    bool written = false;
    std::thread writer([&] { written = writeTextFile(at("pipe"), text); });
    const int fd = ::open(at("pipe").c_str(), O_RDONLY);
    std::string got;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(fd, buffer, sizeof buffer)) > 0;) {
        got.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(fd);
    writer.join();
    EXPECT_TRUE(written);
    EXPECT_EQ(got, text);
}

TEST_F(FileWrite, ASignalEndsTheProgramOnlyWhenTheFileIsWhole) {
    const std::string first(18'000'000, '1');
    const std::string second(18'500'000, '2');
    for (int run = 0; run < 20; ++run) {
        ASSERT_TRUE(writeTextFile(at("x"), first));
        const int signal = run % 2 == 0 ? SIGINT : SIGUSR1;
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(signal, SIG_DFL);
            for (;;) {
                (void)writeTextFile(at("x"), second);
                (void)writeTextFile(at("x"), first);
            }
        }
        ::usleep(static_cast<useconds_t>(5'000 + 1'700 * run));
        ASSERT_EQ(::kill(child, signal), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        const auto left = readTextFile(at("x"));
        ASSERT_TRUE(left == first || left == second) << "run " << run << ": " << left->size() << " bytes";
    }
}

TEST_F(FileWrite, ANewFileIsThereInWholeOrNotAtAllAfterASignal) {
    const std::string text(18'000'000, 'n');
    for (int run = 0; run < 10; ++run) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGTERM, SIG_DFL);
            (void)writeTextFile(at("x"), text);
            ::pause();
        }
        ::usleep(static_cast<useconds_t>(1'000 + 700 * run));
        ASSERT_EQ(::kill(child, SIGTERM), 0);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        ASSERT_TRUE(!fs::exists(at("x")) || fs::file_size(at("x")) == text.size());
        fs::remove(at("x"));
    }
}

TEST_F(FileWrite, SignalsAreAsBeforeAfterwards) {
    sigset_t before;
    sigset_t after;
    ::sigprocmask(SIG_BLOCK, nullptr, &before);
    ASSERT_TRUE(writeTextFile(at("x"), "x"));
    ::sigprocmask(SIG_BLOCK, nullptr, &after);
    for (int signal = 1; signal < NSIG; ++signal) {
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
    }
}

} // namespace
} // namespace morquill
