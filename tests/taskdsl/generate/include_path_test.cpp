// Where the library path and the home directory take part is the matter of fragment_library_test.cpp.

#include "taskdsl/generate/include_path.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

using console::testing::ScopedEnv;

TEST(ResolveIncludePath, IsAbsoluteAndNormalisedWhetherTheFileExistsOrNot) {
    struct Row {
        const char* name;
        const char* base;
        const char* path;
    };
    const Row rows[] = {
        {"x.mq", "/a/b.mq", "/a/x.mq"},
        {"./x.mq", "/a/b.mq", "/a/x.mq"},
        {"../../../x.mq", "/a/b.mq", "/x.mq"},
        {"c//d/../x.mq", "/a/b.mq", "/a/c/x.mq"},
        {"/x.mq", "/a/b.mq", "/x.mq"},
        {"a b.mq", "/a/b c/d.mq", "/a/b c/a b.mq"},
        {"<", "/a/b.mq", "/a/<"}, // no pair of angles
        {"<x.mq", "/a/b.mq", "/a/<x.mq"},
        {"x>", "/a/b.mq", "/a/x>"},
        {"", "/a/b.mq", ""},
    };
    for (const auto& [name, base, path] : rows) {
        EXPECT_EQ(resolveIncludePath(name, base), path) << name;
    }
}

TEST(ResolveIncludePath, WithoutABaseTheCurrentDirectoryCounts) {
    const TemporaryDirectory dir;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir.root());
    const auto bare = resolveIncludePath("x.mq", "");
    const auto beside = resolveIncludePath("../x.mq", "sub/t.mq");
    std::filesystem::current_path(before);
    EXPECT_EQ(bare, dir.path("x.mq"));
    EXPECT_EQ(beside, dir.path("x.mq"));
}

TEST(ResolveIncludePath, AnAngleNameIsLookedForThereFirst) {
    const TemporaryDirectory dir;
    const auto found = dir.write("lib/sub/x.mqlib", "");
    (void)dir.write("here/sub/x.mqlib", "");
    const ScopedEnv path("MORQUILL_MQLIB_PATH", dir.path("lib"));
    const auto base = dir.path("here/t.mq");
    EXPECT_EQ(resolveIncludePath("<sub/x.mqlib>", base), found);
    EXPECT_EQ(resolveIncludePath("sub/x.mqlib", base), dir.path("here/sub/x.mqlib"));
    EXPECT_EQ(resolveIncludePath("<y.mqlib>", base), dir.path("here/y.mqlib"));
}

TEST(ResolveIncludePath, TheHomeDirectoryIsMeantByATildeInAngles) {
    const ScopedEnv home("HOME", "/home/ada");
    const ScopedEnv path("MORQUILL_MQLIB_PATH", "/nowhere");
    EXPECT_EQ(resolveIncludePath("<~/x.mqlib>", "/a/b.mq"), "/home/ada/x.mqlib");
    EXPECT_EQ(resolveIncludePath("<~x.mqlib>", "/a/b.mq"), "/a/~x.mqlib");
    EXPECT_EQ(resolveIncludePath("~/x.mqlib", "/a/b.mq"), "/a/~/x.mqlib");
    const ScopedEnv unknown("HOME", std::nullopt);
    EXPECT_EQ(resolveIncludePath("<~/x.mqlib>", "/a/b.mq"), "/a/~/x.mqlib");
}

} // namespace
} // namespace morquill::taskdsl
