#include "support/descriptor.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
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
