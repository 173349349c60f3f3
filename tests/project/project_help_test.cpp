// The whole text stands in project_command_test.cpp; here is what holds of it whatever it says.

#include "project/project_command.h"
#include "support/text.h"

#include "fixtures/scratch_tree.h"

namespace morquill::project {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ProjectHelp : public ScratchTree {
  protected:
    Output help(std::string_view program) {
        return run("", [&] {
            printProjectHelp(program);
            return 0;
        });
    }
};

TEST_F(ProjectHelp, NamesTheProgramAsItWasCalledAndLeavesNoMark) {
    const Output output = help("/opt/bin/tool");
    EXPECT_EQ(output.err, "");
    EXPECT_THAT(output.out, HasSubstr("  tool project [command] <options>\n"));
    EXPECT_THAT(output.out, Not(HasSubstr("`")));
    EXPECT_THAT(output.out, Not(HasSubstr("@")));
    EXPECT_THAT(output.out, Not(HasSubstr("mqkit project")));
}

TEST_F(ProjectHelp, HasASectionPerSubCommandAndASpellingPerOlderForm) {
    const std::string text = help("mqkit").out;
    const auto lines = splitLines(text);
    for (const char* command : {"init", "add", "update", "rebuild", "exec", "collect"}) {
        const auto row = std::find_if(lines.begin(), lines.end(), [command](std::string_view line) {
            return line.starts_with("  " + std::string(command)) && !line.starts_with("   ");
        });
        ASSERT_NE(row, lines.end()) << command;
        EXPECT_TRUE((row + 1)->starts_with("      -- ")) << command;
    }
    // Each older form is followed by what it stands for.
    auto line = std::find(lines.begin(), lines.end(), "Compatibility forms:");
    ASSERT_NE(line, lines.end());
    std::size_t forms = 0;
    for (++line; line != lines.end() && !line->empty(); line += 2, ++forms) {
        EXPECT_TRUE(line->starts_with("  mqkit ")) << *line;
        ASSERT_NE(line + 1, lines.end());
        EXPECT_TRUE((line + 1)->starts_with("      Equivalent to: mqkit project ")) << *line;
    }
    EXPECT_EQ(forms, 3U);
}

} // namespace
} // namespace morquill::project
