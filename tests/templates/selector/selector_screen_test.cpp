#include "templates/selector/selector_screen.h"

#include "fixtures/selector_sample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::string_view mainControls = "\nControls:\n"
                                          "  ↑/↓  Move cursor\n"
                                          "  Space Select/unselect template\n"
                                          "  p     Preview selected templates\n"
                                          "  v     Edit variables\n"
                                          "  t     Choose variable template\n"
                                          "  Enter Generate task file\n"
                                          "  q     Quit\n";
constexpr std::string_view previewControls = "\nControls:\n"
                                             "  Esc   Back to template selection\n"
                                             "  v     Edit variables\n"
                                             "  t     Choose variable template\n"
                                             "  Enter Generate task file\n"
                                             "  q     Quit\n";
constexpr std::string_view variableControls = "Controls:\n"
                                              "  ↑/↓  Move cursor\n"
                                              "  Enter Apply selected variable template\n"
                                              "  Esc   Back to main screen\n"
                                              "  q     Quit\n";

TEST(MainScreen, ShowsSelectionItemsAndControls) {
    EXPECT_EQ(currentScreen(sampleState()), "=== Morquill interactive template selector ===\n"
                                            "\n"
                                            "Selected templates (0):\n"
                                            "  (none)\n"
                                            "\n"
                                            "Available templates (1/3):\n"
                                            "→   opt (General) [variables: 1]\n"
                                            "    sp (single) [variables: 2]\n"
                                            "    note (single)\n" +
                                                std::string(mainControls));
}

TEST(MainScreen, MarksTheCursorAndTheSelected) {
    auto state = sampleState();
    state.selected = {"note", "opt"};
    state.cursor = 2;
    EXPECT_EQ(currentScreen(state), "=== Morquill interactive template selector ===\n"
                                    "\n"
                                    "Selected templates (2):\n"
                                    "  ✓ note\n"
                                    "  ✓ opt\n"
                                    "\n"
                                    "Available templates (3/3):\n"
                                    "  ✓ opt (General) [variables: 1]\n"
                                    "    sp (single) [variables: 2]\n"
                                    "→ ✓ note (single)\n" +
                                        std::string(mainControls));
}

TEST(MainScreen, TwentyRowsAreInView) {
    auto state = longState(25);
    auto screen = currentScreen(state);
    EXPECT_THAT(screen, HasSubstr("(1/25):\n→   t0 (c)\n"));
    EXPECT_THAT(screen, HasSubstr("    t19 (c)\n  ↓ more items below\n\nControls:"));
    EXPECT_THAT(screen, Not(HasSubstr("t20")));
    EXPECT_THAT(screen, Not(HasSubstr("above")));

    state.cursor = 20;
    screen = currentScreen(scrollToCursors(state));
    EXPECT_THAT(screen, HasSubstr("(21/25):\n    t1 (c)\n"));
    EXPECT_THAT(screen, HasSubstr("→   t20 (c)\n  ↑ more items above\n  ↓ more items below\n\nControls:"));

    state.cursor = 24;
    EXPECT_THAT(currentScreen(scrollToCursors(state)),
                HasSubstr("→   t24 (c)\n  ↑ more items above\n\nControls:"));
}

TEST(PreviewScreen, WithNothingSelected) {
    auto state = sampleState();
    state.inPreview = true;
    state.previewText = "No templates selected";
    EXPECT_EQ(currentScreen(state),
              "=== Template preview ===\n\nNo templates selected\n" + std::string(previewControls));
}

TEST(PreviewScreen, ShowsTheTaskFileBetweenRulers) {
    auto state = sampleState();
    state.inPreview = true;
    state.selected = {"opt", "note"};
    state.previewText = "$opt\n  x\n\n";
    const std::string ruler = "----------------------------------------\n";
    EXPECT_EQ(currentScreen(state), "=== Template preview ===\n"
                                    "\n"
                                    "Selected: opt, note\n"
                                    "\n"
                                    "Preview:\n" +
                                        ruler + "$opt\n  x\n\n\n" + ruler + std::string(previewControls));
    state.previewText = "no line end";
    EXPECT_THAT(currentScreen(state), HasSubstr(ruler + "no line end\n\n" + ruler));
}

TEST(VariableScreen, ShowsTheValuesOfTheOneAtTheCursor) {
    auto state = sampleState();
    state.inVariableTemplates = true;
    state.inPreview = true; // the variable templates lie above the preview
    EXPECT_EQ(currentScreen(state), "=== Variable template selection ===\n"
                                    "\n"
                                    "Available variable templates (1/2):\n"
                                    "\n"
                                    "→ dft - Hybrid functional\n"
                                    "    Variables: basis=def2SVP, func=PBE0\n"
                                    "  empty\n"
                                    "\n" +
                                        std::string(variableControls));
    state.variableTemplateCursor = 1;
    EXPECT_THAT(
        currentScreen(state),
        HasSubstr("(2/2):\n\n  dft - Hybrid functional\n→ empty\n    Variables: (none)\n\nControls:"));
}

TEST(VariableScreen, TwentyRowsAreInView) {
    auto state = longState(25);
    state.inVariableTemplates = true;
    state.variableTemplateCursor = 21;
    const auto screen = currentScreen(scrollToCursors(state));
    EXPECT_THAT(screen, HasSubstr("(22/25):\n\n  v2\n"));
    EXPECT_THAT(
        screen,
        HasSubstr("→ v21\n    Variables: (none)\n\n  ↑ more items above\n  ↓ more items below\nControls:"));
}

TEST(VariableScreen, WithoutTemplatesShowsHowOneLooks) {
    SelectorState state;
    state.inVariableTemplates = true;
    EXPECT_EQ(currentScreen(state), "=== Variable template selection ===\n"
                                    "\n"
                                    "No variable template files were found (.yaml/.yml)\n"
                                    "\n"
                                    "Variable template example:\n"
                                    "name: \"Basic DFT setup\"\n"
                                    "description: \"Basic variables for DFT jobs\"\n"
                                    "variables:\n"
                                    "  func: \"B3LYP\"\n"
                                    "  basis: \"6-31G(d)\"\n"
                                    "\n" +
                                        std::string(variableControls));
}

} // namespace
} // namespace morquill::templates
