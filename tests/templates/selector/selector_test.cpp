// The selector on the process's own streams. Its screens and dialogues have tests of their own.

#include "templates/selector/selector.h"

#include "fixtures/console_fixtures.h"
#include "fixtures/scratch_tree.h"

namespace morquill::templates {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Selector : public ScratchTree {
  protected:
    Output select(std::string_view keys) {
        return run(keys, [] { return runSelector(); });
    }

    console::testing::ScopedEnv path{"MORQUILL_TEMPLATE_PATH", at("templates")};
    console::testing::ScopedEnv home{"HOME", at("home")};
};

TEST_F(Selector, WithoutATemplateThereIsNothingToSelect) {
    dir("templates");
    const Output output = select("");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err, "[mqkit][ERROR] no templates were found in directory " + at("templates") + "\n");
}

TEST_F(Selector, TakesKeysFromStandardInputUntilTheUserLeaves) {
    write("templates/dft/opt.mq", "$opt\n  %keywords opt\n");
    for (const char* keys : {"q", ""}) { // the end of input leaves as well
        const Output output = select(keys);
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.err, "");
        EXPECT_THAT(output.out, HasSubstr("opt"));
        EXPECT_THAT(output.out, HasSubstr("\033[?25l")); // the cursor is hidden and shown again
        EXPECT_THAT(output.out, HasSubstr("\033[?25h"));
    }
}

} // namespace
} // namespace morquill::templates
