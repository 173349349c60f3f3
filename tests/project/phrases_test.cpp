#include "project/phrases.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

TEST(Phrases, AReasonStandsInParentheses) {
    EXPECT_EQ(inParentheses("exit status 3"), " (exit status 3)");
    EXPECT_EQ(inParentheses(""), "");
}

class ShownCommand : public ScratchTree {
  protected:
    std::string shown(bool dryRun) {
        return run("",
                   [&] {
                       printExecution("bash comd", dryRun);
                       return 0;
                   })
            .out;
    }
};

TEST_F(ShownCommand, IsExecutedOrOnlyShown) {
    EXPECT_EQ(shown(true), "[mqkit][DRY-RUN] bash comd\n");
    EXPECT_EQ(shown(false), "[mqkit] execute bash comd\n");
}

} // namespace
} // namespace morquill::project
