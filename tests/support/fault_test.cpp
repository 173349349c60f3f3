#include "support/fault.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <vector>

namespace morquill {
namespace {

TEST(WholeText, KeepsWhatFollowsANulByte) {
    const std::string message("a\0b", 3);
    const WholeTextError fault(message);
    EXPECT_EQ(fault.text(), message);
    EXPECT_EQ(wholeText(fault), message);
    EXPECT_EQ(faultText(fault, "a.mq"), message);
    EXPECT_EQ(wholeText(std::runtime_error(message)), "a") << "other exceptions end there";
}

TEST(FaultText, IsTheMessageOfTheFault) {
    EXPECT_EQ(faultText(std::runtime_error("no such thing"), "a.mq"), "no such thing");
}

TEST(FaultText, NamesTheFileWhenTheMemoryRanOut) {
    EXPECT_EQ(faultText(std::bad_alloc(), "a.mq"), "out of memory: a.mq");
    EXPECT_EQ(faultText(std::bad_array_new_length(), "a.mq"), "out of memory: a.mq");
    EXPECT_EQ(faultText(std::bad_alloc(), ""), "out of memory");
    try {
        std::string().resize(std::string().max_size() + 1);
    } catch (const std::exception& fault) {
        EXPECT_EQ(faultText(fault, "a.mq"), "out of memory: a.mq");
    }
}

TEST(SystemError, HasTheTextOfTheSystem) {
    EXPECT_STREQ(systemErrorText(ENOENT), "No such file or directory");
    errno = ENOSPC;
    const std::error_code error = lastSystemError();
    EXPECT_EQ(error.value(), ENOSPC);
    EXPECT_EQ(error.message(), systemErrorText(ENOSPC));
}

TEST(SystemError, OfAbsenceLeavesNothingOpen) {
    for (const int number : {ENOENT, ENOTDIR, ELOOP}) {
        EXPECT_TRUE(isAbsence(number)) << systemErrorText(number);
    }
    for (const int number : {0, EACCES, EIO, EINTR, ENAMETOOLONG, ENOMEM}) {
        EXPECT_FALSE(isAbsence(number)) << systemErrorText(number);
    }
}

TEST(SystemError, OfTheDiskIsToldFromThoseThatAnotherWayOfWritingAvoids) {
    for (const int number : {ENOSPC, EDQUOT, EFBIG, EIO}) {
        EXPECT_TRUE(isFaultOfTheDisk(number)) << systemErrorText(number);
    }
    for (const int number : {0, EACCES, EINTR, EINVAL, ENOENT, EOPNOTSUPP, EROFS, EXDEV}) {
        EXPECT_FALSE(isFaultOfTheDisk(number)) << systemErrorText(number);
    }
}

} // namespace
} // namespace morquill
