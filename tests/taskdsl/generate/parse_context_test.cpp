#include "taskdsl/generate/parse_context.h"

#include "fixtures/faults.h"

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
