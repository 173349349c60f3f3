#include "console/library_file.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

namespace morquill::console {
namespace {

using testing::ScopedEnv;

TEST(FindLibraryFile, LooksInTheDirectoriesOfTheLibraryPathInOrder) {
    const TemporaryDirectory dir;
    (void)dir.write("one/a.mqlib", "");
    (void)dir.write("two/a.mqlib", "");
    (void)dir.write("two/sub/b.mqlib", "");
    (void)dir.write("one/sub/b.mqlib/file", "");
    const ScopedEnv path("MORQUILL_MQLIB_PATH",
                         ":" + dir.path("none") + ": " + dir.path("one") + " :" + dir.path("two/../two"));
    EXPECT_EQ(findLibraryFile("a.mqlib"), dir.path("one/a.mqlib"));
    EXPECT_EQ(findLibraryFile("sub/b.mqlib"), dir.path("two/sub/b.mqlib")); // a directory is no library
}

TEST(FindLibraryFile, OtherNamesAreReturnedForTheIncluderToPlace) {
    const TemporaryDirectory dir;
    (void)dir.write("lib/a.mqlib", "");
    const ScopedEnv path("MORQUILL_MQLIB_PATH", dir.path("lib"));
    EXPECT_EQ(findLibraryFile("b.mqlib"), "b.mqlib");
    EXPECT_EQ(findLibraryFile("/a.mqlib"), "/a.mqlib");
}

TEST(FindLibraryFile, ALeadingTildeIsTheHomeDirectory) {
    const ScopedEnv path("MORQUILL_MQLIB_PATH", "/nowhere");
    const ScopedEnv home("HOME", "/home/ada");
    EXPECT_EQ(findLibraryFile("~/x.mqlib"), "/home/ada/x.mqlib");
    EXPECT_EQ(findLibraryFile("~"), "/home/ada");
    EXPECT_EQ(findLibraryFile("~x.mqlib"), "~x.mqlib");
    const ScopedEnv unknown("HOME", std::nullopt);
    EXPECT_EQ(findLibraryFile("~/x.mqlib"), "~/x.mqlib");
}

} // namespace
} // namespace morquill::console
