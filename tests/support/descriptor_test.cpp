#include "support/descriptor.h"

#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace morquill {
namespace {

bool isOpenNumber(int fd) {
    return ::fcntl(fd, F_GETFD) >= 0;
}

TEST(Descriptor, IsClosedWithItsOwner) {
    int number = -1;
    {
        const Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        number = file.get();
        ASSERT_TRUE(file.isOpen());
        EXPECT_TRUE(isOpenNumber(number));
    }
    EXPECT_FALSE(isOpenNumber(number));
    EXPECT_FALSE(Descriptor().isOpen());
}

TEST(Descriptor, MovesItsFile) {
    Descriptor first(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const int number = first.get();
    Descriptor second(std::move(first));
    EXPECT_EQ(second.get(), number);
    Descriptor third;
    third = std::move(second);
    EXPECT_EQ(third.get(), number);
    EXPECT_TRUE(isOpenNumber(number));
}

TEST(Descriptor, ClosesOnceAndSaysHowThatWent) {
    Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.close()) << "nothing is left to close";
    Descriptor wrong(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ::close(wrong.get());
    EXPECT_FALSE(wrong.close());
    EXPECT_EQ(errno, EBADF);
}

TEST(OpenFile, OpensForThisProcessAlone) {
    const Descriptor file = openFile("/dev/null", O_RDONLY);
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(::fcntl(file.get(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_FALSE(openFile("/dev/null/x", O_RDONLY).isOpen());
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_FALSE(openFile(std::string("/dev/null\0x", 11), O_RDONLY).isOpen());
    EXPECT_EQ(errno, EINVAL);
}

/// A pipe from which `text` can be read to its end.
Descriptor pipeWith(std::string_view text) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const Descriptor to(ends[1]);
    EXPECT_TRUE(writeAll(to.get(), text));
    return Descriptor(ends[0]);
}

TEST(Reading, TakesAPortionOrAllThatIsAskedFor) {
    const Descriptor from = pipeWith("one two");
    char buffer[32];
    EXPECT_EQ(readSome(from.get(), buffer, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "one");
    EXPECT_EQ(readFull(from.get(), buffer, sizeof buffer), 4);
    EXPECT_EQ(std::string(buffer, 4), " two");
    EXPECT_EQ(readSome(from.get(), buffer, sizeof buffer), 0);
    EXPECT_EQ(readFull(-1, buffer, sizeof buffer), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(Reading, GoesToTheEndWhateverSizeIsExpected) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 20'000U}) {
        const std::string text(size, 'x');
        for (const std::size_t expected : {std::size_t{0}, std::size_t{1}, size}) {
            EXPECT_EQ(readToEnd(pipeWith(text).get(), expected), text) << size << " " << expected;
        }
    }
    EXPECT_EQ(readToEnd(-1), std::nullopt);
}

TEST(Reading, GoesOnAfterASignal) {
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0); // without SA_RESTART: `read` comes back early
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Descriptor from(ends[0]);
    Descriptor to(ends[1]);
    ::ualarm(2'000, 2'000);
    std::thread writer([&] {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        (void)writeAll(to.get(), "late");
        (void)to.close();
    });
    EXPECT_EQ(readToEnd(from.get()), "late");
    ::ualarm(0, 0);
    writer.join();
    ASSERT_EQ(::sigaction(SIGALRM, &before, nullptr), 0);
}

TEST(CopyToEnd, CopiesWhatIsLeftOfAFileOrAPipe) {
    const TemporaryDirectory dir;
    const std::string text(300'000, 'y');
    {
        const Descriptor source = openFile(dir.path("a"), O_WRONLY | O_CREAT, 0600);
        ASSERT_TRUE(writeAll(source.get(), "head" + text));
    }
    const Descriptor from = openFile(dir.path("a"), O_RDONLY);
    char head[4];
    ASSERT_EQ(readFull(from.get(), head, 4), 4);
    const Descriptor to = openFile(dir.path("b"), O_RDWR | O_CREAT, 0600);
    EXPECT_TRUE(copyToEnd(from.get(), to.get()));
    EXPECT_TRUE(copyToEnd(pipeWith("tail").get(), to.get()));
    ASSERT_EQ(::lseek(to.get(), 0, SEEK_SET), 0);
    EXPECT_EQ(readToEnd(to.get()), text + "tail");
}

TEST(CopyToEnd, StopsBetweenPortions) {
    const Descriptor to = openFile("/dev/null", O_WRONLY);
    int asked = 0;
    EXPECT_FALSE(copyToEnd(pipeWith("x").get(), to.get(), [&] { return ++asked == 2; }));
    EXPECT_EQ(errno, ECANCELED);
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(copyToEnd(pipeWith("x").get(), to.get(), [] { return false; }));
}

TEST(CopyToEnd, KeepsTheReasonOfAFailure) {
    const Descriptor full = openFile("/dev/full", O_WRONLY);
    EXPECT_FALSE(copyToEnd(pipeWith("x").get(), full.get()));
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(copyToEnd(-1, full.get()));
    EXPECT_EQ(errno, EBADF);
}

TEST(WriteAll, WritesMoreThanOnePortion) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const Descriptor from(ends[0]);
    const Descriptor to(ends[1]);
    EXPECT_TRUE(writeAll(to.get(), "some text"));
    EXPECT_TRUE(writeAll(to.get(), ""));
    char buffer[32];
    ASSERT_EQ(::read(from.get(), buffer, sizeof buffer), 9);
    EXPECT_EQ(std::string(buffer, 9), "some text");
}

TEST(WriteAll, KeepsTheReasonOfAFailure) {
    const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(full.isOpen());
    EXPECT_FALSE(writeAll(full.get(), "x"));
    EXPECT_EQ(errno, ENOSPC);
}

} // namespace
} // namespace morquill
