#include "project/phrases.h"

#include "console/messages.h"
#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

TEST(Phrases, AReasonStandsInParentheses) {
    EXPECT_EQ(inParentheses("exit status 3"), " (exit status 3)");
    EXPECT_EQ(inParentheses(""), "");
}

class ShownCommand : public ScratchTree {
  protected:
    std::string shown(console::RunMode mode) {
        return run("",
                   [&] {
                       printExecution("bash comd", mode);
                       return 0;
                   })
            .out;
    }
};

TEST_F(ShownCommand, IsExecutedOrOnlyShown) {
    EXPECT_EQ(shown(console::RunMode::dryRun), "[mqkit][DRY-RUN] bash comd\n");
    EXPECT_EQ(shown(console::RunMode::apply), "[mqkit] execute bash comd\n");
}

TEST(Phrases, NameWhatIsMissing) {
    EXPECT_EQ(missingBlock("m1 / $opt"), "m1 / $opt : block directory is missing");
    EXPECT_EQ(noCases("/p"), "no case subdirectories were found in project: /p");
}

} // namespace
} // namespace morquill::project
