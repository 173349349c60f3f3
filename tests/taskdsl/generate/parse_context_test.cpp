#include "taskdsl/generate/parse_context.h"

#include "fixtures/faults.h"
#include "fixtures/temporary_directory.h"

#include <gtest/gtest.h>

namespace morquill::taskdsl {
namespace {

TEST(ParseContext, FollowsAHundredThousandIncludesAndNotOneMore) {
    const WarningSink sink;
    ParseContext context(sink);
    EXPECT_EQ(messageOf([&] {
                  for (int i = 0; i < 100'000; ++i) {
                      context.countInclude();
                  }
              }),
              "no fault");
    EXPECT_EQ(messageOf([&] { context.countInclude(); }), "more than 100000 &INCLUDE lines were followed");
}

TEST(ParseContext, TheOverlayCountsInsteadOfTheDisk) {
    const TemporaryDirectory directory;
    const auto onDisk = directory.write("a.mq", "disk");
    const auto unsaved = directory.path("b.mq");
    const FileOverlay overlay = [&](const std::string& path) {
        return path == unsaved ? std::optional<std::string>("unsaved") : std::nullopt;
    };
    const WarningSink sink;
    const ParseContext context(sink, overlay);
    EXPECT_TRUE(context.hasFile(onDisk));
    EXPECT_EQ(context.readFile(onDisk), "disk");
    EXPECT_TRUE(context.hasFile(unsaved));
    EXPECT_EQ(context.readFile(unsaved), "unsaved");
    EXPECT_FALSE(context.hasFile(directory.path("c.mq")));
    EXPECT_EQ(context.readFile(directory.path("c.mq")), std::nullopt);
}

TEST(LibraryBindings, NameThePathOfEveryAlias) {
    const auto library = std::make_shared<FragmentLibrary>();
    library->path = "/l/one.mqlib";
    DocumentContext document;
    EXPECT_EQ(libraryBindings(document), ValueMap{});
    document.namespaces = {{"a", library}, {"b", library}};
    EXPECT_EQ(libraryBindings(document), (ValueMap{{"a", "/l/one.mqlib"}, {"b", "/l/one.mqlib"}}));
}

} // namespace
} // namespace morquill::taskdsl
