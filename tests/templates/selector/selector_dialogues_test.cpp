#include "templates/selector/selector_dialogues.h"

#include "fixtures/scratch_tree.h"
#include "fixtures/selector_sample.h"
#include "support/file.h"

#include <filesystem>

namespace morquill::templates {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Pair;

constexpr std::string_view show = "\033[?25h";
constexpr std::string_view hide = "\033[?25l";
constexpr std::string_view cleared = "<clear>";
constexpr std::string_view anyKey = "Press any key to continue...";
constexpr std::string_view question = "[mqkit] choose a variable to set or change its value;\n"
                                      "        input 't' to load variable template;\n"
                                      "        input 'q' to return to template selection;\n"
                                      "        Variable index?: ";

/// The user as a script: keys and lines in order, then the end of input for each.
struct Script {
    std::vector<std::int32_t> keys;
    std::vector<std::string> lines;
    std::string printed{};
    std::size_t nextKey = 0;
    std::size_t nextLine = 0;

    SelectorConsole console() {
        return {[this](std::string_view text) { printed += text; }, [this] { printed += cleared; },
                [this] { return nextKey < keys.size() ? keys[nextKey++] : key::endOfInput; },
                [this] { return nextLine < lines.size() ? std::optional(lines[nextLine++]) : std::nullopt; }};
    }
};

class Dialogue : public ScratchTree {
  protected:
    void finish(DialogueOutcome end) {
        state = std::move(end.state);
        quit = end.after == AfterDialogue::quit;
    }
    [[nodiscard]] std::string editPrinted(const std::vector<std::string>& lines) {
        Script script{{}, lines};
        finish(editVariables(std::move(state), script.console()));
        EXPECT_FALSE(quit);
        EXPECT_EQ(script.nextLine, lines.size());
        return script.printed;
    }
    [[nodiscard]] std::string generatePrinted(const std::vector<std::string>& lines, std::int32_t pressed) {
        Script script{{pressed}, lines};
        finish(generateTaskFile(std::move(state), script.console()));
        return script.printed;
    }

    SelectorState state = sampleState();
    bool quit = false;
};

std::string variableList(const std::string& basis, const std::string& func) {
    return "[mqkit] Variables used by selected templates:\n  [1] basis = " + basis +
           "\n  [2] func = " + func + "\n" + std::string(question);
}

std::string editScreen() {
    return std::string(show) + std::string(cleared) + "=== Edit variables ===\n\n";
}

TEST_F(Dialogue, EditWithoutVariablesWaitsForAKey) {
    Script script{{'x'}, {}};
    finish(editVariables(std::move(state), script.console()));
    EXPECT_EQ(script.printed, editScreen() + "The selected templates have no required variables\n\n" +
                                  std::string(anyKey) + std::string(hide));
    EXPECT_FALSE(quit);
    EXPECT_EQ(state.previewText, "No templates selected");
}

TEST_F(Dialogue, EditEndsTheProgramWhenTheInputEndsAtAKey) {
    Script script;
    finish(editVariables(std::move(state), script.console()));
    EXPECT_TRUE(quit);
}

TEST_F(Dialogue, EditSetsAValue) {
    state.selected = {"sp"};
    EXPECT_EQ(editPrinted({" 2 ", " B3 LYP ", "Q"}), editScreen() + variableList("(unset)", "(unset)") +
                                                         "[mqkit] input a new value: [mqkit] done.\n\n" +
                                                         variableList("(unset)", " B3 LYP ") +
                                                         std::string(hide));
    EXPECT_THAT(state.variableValues, ElementsAre(Pair("func", " B3 LYP ")));
    EXPECT_THAT(state.previewText, HasSubstr("  func:  B3 LYP \n"));
}

TEST_F(Dialogue, EditRefusesBadIndices) {
    state.selected = {"sp"};
    std::string expected = editScreen();
    const std::vector<std::string> bad{"0", "abc", "3", "12345678901234567890", "", "+1", "1x", "-1"};
    for (std::size_t i = 0; i < bad.size(); ++i) {
        expected += variableList("(unset)", "(unset)") + "[mqkit] Invalid variable index\n\n";
    }
    EXPECT_EQ(editPrinted(bad), expected + variableList("(unset)", "(unset)") + std::string(hide));
    EXPECT_TRUE(state.variableValues.empty());
}

TEST_F(Dialogue, EditLoadsTheMatchingValuesOfATemplate) {
    state.selected = {"opt"};
    const std::string list = "[mqkit] Variables used by selected templates:\n  [1] func = ";
    EXPECT_EQ(editPrinted({"T", "1", "q"}), editScreen() + list + "(unset)\n" + std::string(question) +
                                                "[mqkit] choose a variable template to load:\n"
                                                "  [1] dft (func = PBE0)\n"
                                                "  [2] empty (no matching variables)\n"
                                                "[mqkit] Template index?: [mqkit] done.\n\n" +
                                                list + "PBE0\n" + std::string(question) + std::string(hide));
    EXPECT_THAT(state.variableValues, ElementsAre(Pair("func", "PBE0")));
}

TEST_F(Dialogue, EditShowsAllMatchingValuesAndRefusesBadTemplateIndices) {
    state.selected = {"sp"};
    const std::string offer = variableList("(unset)", "(unset)") +
                              "[mqkit] choose a variable template to load:\n"
                              "  [1] dft (basis = def2SVP, func = PBE0)\n"
                              "  [2] empty (no matching variables)\n"
                              "[mqkit] Template index?: [mqkit] Invalid template index\n\n";
    EXPECT_EQ(editPrinted({"t", "0", "t", "3", "t", ""}),
              editScreen() + offer + offer + offer + variableList("(unset)", "(unset)") + std::string(hide));
}

TEST_F(Dialogue, EditWithoutVariableTemplatesSaysSo) {
    state.selected = {"sp"};
    state.variableTemplates.clear();
    EXPECT_EQ(editPrinted({"t"}),
              editScreen() + variableList("(unset)", "(unset)") +
                  "[mqkit] No matching variable templates were found under the template directory.\n\n" +
                  variableList("(unset)", "(unset)") + std::string(hide));
}

TEST_F(Dialogue, TheEndOfInputLeavesTheDialogueAtEveryQuestion) {
    state.selected = {"sp"};
    EXPECT_THAT(editPrinted({}), EndsWith("Variable index?: " + std::string(hide)));
    EXPECT_THAT(editPrinted({"1"}), EndsWith("[mqkit] input a new value: " + std::string(hide)));
    EXPECT_THAT(editPrinted({"t"}), EndsWith("[mqkit] Template index?: " + std::string(hide)));
    EXPECT_TRUE(state.variableValues.empty());
}

TEST_F(Dialogue, GenerateWithNothingSelectedWaitsForAKey) {
    EXPECT_EQ(generatePrinted({}, 'q'),
              std::string(show) + std::string(cleared) +
                  "=== Generate task file ===\n\n[mqkit][ERROR] no templates selected\n\n" +
                  std::string(anyKey) + std::string(hide));
    EXPECT_FALSE(quit);
    (void)generatePrinted({}, key::endOfInput);
    EXPECT_TRUE(quit);
}

std::string generated(const std::string& name, const std::string& tail) {
    return std::string(show) + std::string(cleared) +
           "=== Generate task file ===\n\nOutput filename (default: generated_task.mq): \n[mqkit] wrote task "
           "file: " +
           name + "\n" + tail + "\nPress q to quit, or any other key to continue editing..." +
           std::string(hide);
}

TEST_F(Dialogue, GenerateWritesTheTaskFileAndListsTheValues) {
    state.selected = {"sp"};
    state.variableValues = {{"func", "PBE0"}};
    ASSERT_TRUE(writeTextFile("generated_task.mq",
                              "a much longer text that stood here before, to be replaced whole "
                              "and without a question, whatever it was\n"));
    EXPECT_EQ(generatePrinted({""}, 'x'),
              generated("generated_task.mq", "\nVariables:\n  - basis: (unset)\n  - func: PBE0\n"));
    EXPECT_FALSE(quit);
    EXPECT_THAT(state.selected, ElementsAre("sp"));
    EXPECT_EQ(readTextFile("generated_task.mq"),
              "define:\n  basis: \n  func: PBE0\n\n$sp\n  %keywords \"[func]/[basis]\"\n\n");
}

TEST_F(Dialogue, GenerateCompletesTheName) {
    state.selected = {"note"};
    for (const auto& [answer, name] :
         {std::pair("a", "a.mq"), std::pair("b.mq", "b.mq"), std::pair("c.mq.old", "c.mq.old"),
          std::pair("d.txt", "d.txt.mq"), std::pair(" ", " .mq")}) {
        EXPECT_EQ(generatePrinted({answer}, 'x'), generated(name, ""));
        EXPECT_TRUE(fs::is_regular_file(name)) << name;
    }
}

TEST_F(Dialogue, GenerateEndsWithTheSmallLetterOnly) {
    state.selected = {"note"};
    (void)generatePrinted({"a"}, 'Q');
    EXPECT_FALSE(quit);
    (void)generatePrinted({"a"}, 'q');
    EXPECT_TRUE(quit);
    quit = false;
    (void)generatePrinted({"a"}, key::endOfInput);
    EXPECT_TRUE(quit);
}

TEST_F(Dialogue, GenerateLeavesTheCursorVisibleAtTheEnd) {
    state.selected = {"note"};
    for (const std::int32_t last : {std::int32_t{'q'}, key::endOfInput}) {
        EXPECT_THAT(generatePrinted({"a"}, last), EndsWith("or any other key to continue editing..."));
    }
}

TEST_F(Dialogue, GenerateReportsAFailure) {
    state.selected = {"sp"};
    EXPECT_THAT(generatePrinted({"no/such/dir"}, 'x'),
                EndsWith("mq): \n[mqkit][ERROR] could not write file no/such/dir.mq\n"
                         "\nPress q to quit, or any other key to continue editing..." +
                         std::string(hide)));
}

TEST_F(Dialogue, GenerateWithoutAnAnswerWritesNothing) {
    state.selected = {"note"};
    EXPECT_THAT(generatePrinted({}, 'x'), EndsWith("generated_task.mq): " + std::string(hide)));
    EXPECT_FALSE(quit);
    EXPECT_TRUE(fs::is_empty(root));
}

TEST_F(Dialogue, TheLoopDrawsTakesKeysAndShowsTheCursorAtTheEnd) {
    Script script{{'j', ' ', 'v', 'p', 10, 'x', key::escape, 'q'}, {"1", "6-31G", "q", "out"}};
    runSelectorLoop(sampleState(), script.console());
    EXPECT_THAT(script.printed,
                ::testing::StartsWith(std::string(hide) + std::string(cleared) + "=== Morquill"));
    EXPECT_THAT(script.printed, EndsWith("  q     Quit\n" + std::string(show)));
    EXPECT_EQ(script.nextKey, script.keys.size());
    EXPECT_EQ(readTextFile("out.mq"),
              "define:\n  basis: 6-31G\n  func: \n\n$sp\n  %keywords \"[func]/[basis]\"\n\n");
    // Generate was called from the preview and came back to it.
    const auto waiting = script.printed.find("continue editing...");
    EXPECT_THAT(script.printed.substr(waiting), HasSubstr(std::string(cleared) + "=== Template preview ==="));
}

TEST_F(Dialogue, TheLoopEndsWithTheInput) {
    Script script;
    runSelectorLoop(sampleState(), script.console());
    EXPECT_THAT(script.printed, EndsWith(std::string(show)));
    Script atAKey{{'v'}, {}};
    runSelectorLoop(sampleState(), atAKey.console());
    EXPECT_THAT(atAKey.printed, EndsWith(std::string(anyKey) + std::string(hide) + std::string(show)));
}

} // namespace
} // namespace morquill::templates
