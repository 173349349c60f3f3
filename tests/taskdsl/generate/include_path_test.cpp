#include "taskdsl/generate/include_path.h"

#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace morquill::taskdsl {
namespace {

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
        EXPECT_EQ(resolveIncludePath(name, base, {}), path) << name;
    }
}

TEST(ResolveIncludePath, WithoutABaseTheCurrentDirectoryCounts) {
    const TemporaryDirectory dir;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir.root());
    const auto bare = resolveIncludePath("x.mq", "", {});
    const auto beside = resolveIncludePath("../x.mq", "sub/t.mq", {});
    std::filesystem::current_path(before);
    EXPECT_EQ(bare, dir.path("x.mq"));
    EXPECT_EQ(beside, dir.path("x.mq"));
}

TEST(ResolveIncludePath, AnAngleNameGoesThroughTheFinder) {
    const LibraryFileFinder find = [](const std::string& name) {
        return name == "x.mqlib" ? "/lib//x.mqlib" : "found/" + name;
    };
    EXPECT_EQ(resolveIncludePath("<x.mqlib>", "/a/b.mq", find), "/lib/x.mqlib");
    EXPECT_EQ(resolveIncludePath("<y.mqlib>", "/a/b.mq", find), "/a/found/y.mqlib"); // beside the includer
    EXPECT_EQ(resolveIncludePath("x.mqlib", "/a/b.mq", find), "/a/x.mqlib");
    EXPECT_EQ(resolveIncludePath("<x.mqlib>", "/a/b.mq", {}), "/a/x.mqlib");
}

} // namespace
} // namespace morquill::taskdsl
