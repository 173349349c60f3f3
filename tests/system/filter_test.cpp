#include "system/filter.h"

#include "fixtures/no_descriptor_left.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace morquill::system {
namespace {

TEST(Filter, WhatTheChildReadsAndWrites) {
    const FilterResult result = runFilter({"tr", "a-c", "A-C"}, "abcd\nx");
    EXPECT_TRUE(succeeded(result.process));
    EXPECT_EQ(result.output, "ABCd\nx");
}

TEST(Filter, AnyBytesAndMoreThanAPipeHolds) {
    std::string bytes;
    for (int i = 0; i < 1'000'000; ++i) {
        bytes += static_cast<char>(i % 251);
    }
    const FilterResult result = runFilter({"cat"}, bytes);
    EXPECT_TRUE(succeeded(result.process));
    EXPECT_TRUE(result.output == bytes);
    EXPECT_EQ(runFilter({"cat"}, "").output, "");
}

TEST(Filter, AChildThatReadsNothing) {
    const FilterResult result = runFilter({"true"}, std::string(1'000'000, 'x'));
    EXPECT_TRUE(succeeded(result.process));
    EXPECT_EQ(result.output, "");
}

TEST(Filter, WhatAFailedChildWroteIsThereToo) {
    const FilterResult result = runFilter({"sh", "-c", "cat; exit 3"}, "half");
    EXPECT_EQ(describeProcessFailure("sh", result.process), "sh exited with code 3");
    EXPECT_EQ(result.output, "half");
}

TEST(Filter, AProgramThatIsNotThere) {
    const FilterResult result = runFilter({"no-such-program-of-mqkit"}, "text");
    EXPECT_FALSE(result.process.launched);
    EXPECT_EQ(result.process.error,
              "failed to execute 'no-such-program-of-mqkit': No such file or directory");
}

TEST(Filter, NoDescriptorLeft) {
    const FilterResult result = [] {
        const NoDescriptorLeft limit;
        return runFilter({"true"}, "text");
    }();
    EXPECT_EQ(result.process.error, "failed to hold the input of a child process: Too many open files");
}

} // namespace
} // namespace morquill::system
