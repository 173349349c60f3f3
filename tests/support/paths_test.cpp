#include "support/paths.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

class Paths : public ScratchTree {};

TEST_F(Paths, AbsoluteIsNormalAndHasNoTrailingSlash) {
    enter("a");
    EXPECT_EQ(absoluteLocation(""), at("a"));
    EXPECT_EQ(absoluteLocation("."), at("a"));
    EXPECT_EQ(absoluteLocation("./x//y/../z/"), at("a/x/z"));
    EXPECT_EQ(absoluteLocation(".."), root);
    EXPECT_EQ(absoluteLocation("/"), "/");
    EXPECT_EQ(absoluteLocation("/../.."), "/");
    EXPECT_EQ(absoluteLocation("a b/\xff\n"), at("a/a b/\xff\n"));
    EXPECT_EQ(absoluteLocation("-n"), at("a/-n"));
}

TEST_F(Paths, LinksStayAsTheyAreWritten) {
    dir("real");
    link("real", "link");
    EXPECT_EQ(absoluteLocation("link/x"), at("link/x"));
}

TEST_F(Paths, AVanishedCurrentDirectoryIsNoFault) {
    enter("gone");
    std::filesystem::remove(at("gone"));
    EXPECT_EQ(absoluteLocation(""), ".");
    EXPECT_EQ(absoluteLocation("x/"), "x");
    EXPECT_EQ(absoluteLocation("/y"), "/y");
}

TEST(PathText, TakesPathsApart) {
    EXPECT_EQ(joinPath("/a", "b"), "/a/b");
    EXPECT_EQ(joinPath("/", "b"), "/b");
    EXPECT_EQ(joinPath("/a", "/etc"), "/a/etc");
    EXPECT_EQ(joinPath("/a", "//"), "/a/");
    EXPECT_EQ(baseName("/a/b.c"), "b.c");
    EXPECT_EQ(baseName("b"), "b");
    EXPECT_EQ(baseName("/"), "");
    EXPECT_EQ(parentPath("/a/b"), "/a");
    EXPECT_EQ(parentPath("/a"), "/");
    EXPECT_EQ(parentPath("/"), "/");
    EXPECT_EQ(parentPath("a"), "");
}

TEST(PathText, ExtensionAndStem) {
    const struct {
        std::string name;
        std::string extension;
        std::string stem;
    } rows[] = {
        {"a.mq", ".mq", "a"}, {"a.b.mq", ".mq", "a.b"},
        {".mq", "", ".mq"},   {"..mq", ".mq", "."},
        {"a.", ".", "a"},     {"a", "", "a"},
        {"..", "", ".."},     {".", "", "."},
        {"x.y/a", "", "a"},   {"/p/b.XYZ", ".XYZ", "b"},
        {"", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(extensionOf(row.name), row.extension) << row.name;
        EXPECT_EQ(stemOf(row.name), row.stem) << row.name;
        EXPECT_EQ(std::filesystem::path(row.name).extension().string(), row.extension) << row.name;
        EXPECT_EQ(std::filesystem::path(row.name).stem().string(), row.stem) << row.name;
    }
}

TEST_F(Paths, NormalisedPathJoinsDifferentSpellings) {
    dir("real");
    link("real", "link");
    EXPECT_EQ(normalisedPath(root + "/./a/../b"), at("b"));
    EXPECT_EQ(normalisedPath("none/x"), at("none/x"));
    EXPECT_EQ(normalisedPath("link/../y"), at("y"));
    EXPECT_EQ(normalisedPath("link/z"), at("real/z"));
    enter("gone");
    std::filesystem::remove(at("gone"));
    EXPECT_EQ(normalisedPath("a/../b"), "b");
}

TEST_F(Paths, LieBelowADirectoryByWholeNames) {
    EXPECT_TRUE(liesBelow("/a/b", "/a"));
    EXPECT_TRUE(liesBelow("/a/b/c", "/a"));
    EXPECT_TRUE(liesBelow("/a", "/"));
    EXPECT_FALSE(liesBelow("/a", "/a"));
    EXPECT_FALSE(liesBelow("/ab", "/a"));
    EXPECT_FALSE(liesBelow("/a", "/a/b"));
    EXPECT_FALSE(liesBelow("/a", ""));
    EXPECT_FALSE(liesBelow("/", "/"));
}

} // namespace
} // namespace morquill::project
