#include "lsp/help_page.h"

#include "support/file.h"

#include <gmock/gmock.h>

namespace {

using namespace morquill::lsp;
using testing::HasSubstr;

TEST(HelpPage, IsCurrent) {
    EXPECT_EQ(morquill::readTextFile("docs/words.md"), renderHelpPage())
        << "docs/words.md is stale; build the target words_doc";
}

TEST(HelpPage, HasATableForEachTopic) {
    const auto page = renderHelpPage();
    EXPECT_THAT(page, HasSubstr("\n\n## Words of sources\n\n| form | meaning |\n|---|---|\n| `origin` | "
                                "The molecule's own input, the source unless another is written. |\n"));
    EXPECT_THAT(page, HasSubstr("| `verbosity p \\| t` | How much the program prints. |\n"));
}

} // namespace
