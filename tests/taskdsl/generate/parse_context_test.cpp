#include "taskdsl/generate/parse_context.h"

#include "fixtures/faults.h"
#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace morquill::taskdsl {
namespace {

TEST(ParseContext, FollowsAHundredThousandIncludesAndNotOneMore) {
    ParseContext context({});
    EXPECT_EQ(messageOf([&] {
                  for (int i = 0; i < 100'000; ++i) {
                      context.countInclude();
                  }
              }),
              "no fault");
    EXPECT_EQ(messageOf([&] { context.countInclude(); }), "more than 100000 &INCLUDE lines were followed");
}

TEST(ParseContext, WithoutASinkWarningsGoNowhere) {
    const ParseContext silent({});
    silent.options.warnings("lost");
    std::string heard;
    const ParseContext loud({.warnings = [&heard](const std::string& text) { heard += text; }});
    loud.options.warnings("kept");
    EXPECT_EQ(heard, "kept");
}

TEST(ParseContext, AsksTheCallerForNamesInAngles) {
    const ParseContext alone({});
    EXPECT_EQ(alone.resolveIncludePath("<x.mqlib>", "/a/b.mq"), "/a/x.mqlib");
    const ParseContext context({.findLibraryFile = [](const std::string& name) { return "/lib/" + name; }});
    EXPECT_EQ(context.resolveIncludePath("<x.mqlib>", "/a/b.mq"), "/lib/x.mqlib");
    EXPECT_EQ(context.resolveIncludePath("x.mqlib", "/a/b.mq"), "/a/x.mqlib");
}

TEST(ParseContext, WithoutATestOfItsOwnTheDiskIsAsked) {
    const TemporaryDirectory dir;
    const auto file = dir.write("a.mq", "");
    const ParseContext disk({});
    EXPECT_TRUE(disk.options.isFile(file));
    EXPECT_FALSE(disk.options.isFile(dir.path("b.mq")));
    const ParseContext own({.isFile = [](const std::string& path) { return path == "b.mq"; }});
    EXPECT_TRUE(own.options.isFile("b.mq"));
}

TEST(ParseContext, TheOverlayCountsInsteadOfTheDisk) {
    const TemporaryDirectory directory;
    const auto onDisk = directory.write("a.mq", "disk");
    const auto unsaved = directory.path("b.mq");
    const ParseContext context({.overlay = [&](const std::string& path) {
        return path == unsaved ? std::optional<std::string>("unsaved") : std::nullopt;
    }});
    EXPECT_TRUE(context.options.isFile(onDisk));
    EXPECT_EQ(context.readFile(onDisk), "disk");
    EXPECT_TRUE(context.options.isFile(unsaved));
    EXPECT_EQ(context.readFile(unsaved), "unsaved");
    EXPECT_FALSE(context.options.isFile(directory.path("c.mq")));
    EXPECT_EQ(context.readFile(directory.path("c.mq")), std::nullopt);
}

TEST(EnteredFiles, AreToldApartByWhatTheyAre) {
    const TemporaryDirectory dir;
    const auto file = dir.write("a.mq", "");
    std::filesystem::create_symlink("a.mq", dir.path("link.mq"));
    EnteredFiles files;
    EXPECT_FALSE(files.contains(file));
    files.add(dir.path("./link.mq"));
    EXPECT_TRUE(files.contains(file));
    files.add(dir.path("none.mq"));
    EXPECT_TRUE(files.contains(dir.path("none.mq")));
    EXPECT_TRUE(files.contains(dir.path("link.mq")));
    EXPECT_FALSE(files.contains(dir.path("b.mq")));
}

TEST(LibraryBindings, NameThePathOfEveryAlias) {
    const auto library = std::make_shared<FragmentLibrary>();
    library->path = "/l/one.mqlib";
    ParseContext run({});
    DocumentContext document(run);
    EXPECT_EQ(libraryBindings(document), ValueMap{});
    document.namespaces = {{"a", library}, {"b", library}};
    EXPECT_EQ(libraryBindings(document), (ValueMap{{"a", "/l/one.mqlib"}, {"b", "/l/one.mqlib"}}));
}

} // namespace
} // namespace morquill::taskdsl
