#include "templates/selector/selector_state.h"

#include "fixtures/selector_sample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill::templates {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

/// The state after some keys, none of which asks for more.
SelectorState after(SelectorState state, const std::vector<std::int32_t>& keys) {
    for (const auto pressed : keys) {
        auto step = pressKey(std::move(state), pressed);
        EXPECT_EQ(step.action, SelectorAction::none) << pressed;
        state = std::move(step.state);
    }
    return state;
}

SelectorState onPreview() {
    return after(sampleState(), {'p'});
}

SelectorState onVariables() {
    return after(sampleState(), {'t'});
}

TEST(SelectorStart, ItemsStandByCategoryThenAsFound) {
    const auto state = sampleState();
    std::vector<std::string> names;
    for (const auto& item : state.items) {
        names.push_back(item.name);
    }
    EXPECT_THAT(names, ElementsAre("opt", "sp", "note"));
    EXPECT_EQ(state.library.templates.front().name, "sp");
    EXPECT_EQ(state.cursor, 0);
    EXPECT_FALSE(state.inPreview || state.inVariableTemplates);
}

TEST(MainKeys, TheCursorStopsAtBothEnds) {
    EXPECT_EQ(after(sampleState(), {key::up}).cursor, 0);
    EXPECT_EQ(after(sampleState(), {'k'}).cursor, 0);
    EXPECT_EQ(after(sampleState(), {key::down, 'j'}).cursor, 2);
    EXPECT_EQ(after(sampleState(), {key::down, 'j', 'j', key::down}).cursor, 2);
    EXPECT_EQ(after(sampleState(), {'j', 'j', key::up}).cursor, 1);
    EXPECT_EQ(after(sampleState(), {'j', 'j', 'k', 'k'}).cursor, 0);
}

TEST(MainKeys, SpaceTicksAndUnticksAndKeepsTheOrderOfTheOthers) {
    EXPECT_THAT(after(sampleState(), {'j', ' ', 'k', ' ', 'j', 'j', ' '}).selected,
                ElementsAre("sp", "opt", "note"));
    EXPECT_THAT(after(sampleState(), {'j', ' ', 'k', ' ', 'j', 'j', ' ', 'k', 'k', ' '}).selected,
                ElementsAre("sp", "note"));
}

TEST(MainKeys, ActionsAndScreens) {
    struct Row {
        std::int32_t pressed;
        SelectorAction action;
    };
    for (const auto& row :
         {Row{'v', SelectorAction::edit}, Row{'V', SelectorAction::edit}, Row{10, SelectorAction::generate},
          Row{13, SelectorAction::generate}, Row{'q', SelectorAction::quit}, Row{'Q', SelectorAction::quit},
          Row{key::endOfInput, SelectorAction::quit}}) {
        for (const auto& state : {sampleState(), onPreview()}) {
            EXPECT_EQ(pressKey(state, row.pressed).action, row.action) << row.pressed;
        }
    }
    for (const std::int32_t pressed : {'p', 'P'}) {
        EXPECT_TRUE(after(sampleState(), {pressed}).inPreview);
    }
    for (const std::int32_t pressed : {'t', 'T'}) {
        EXPECT_TRUE(after(sampleState(), {pressed}).inVariableTemplates);
        const auto state = after(onPreview(), {pressed});
        EXPECT_TRUE(state.inVariableTemplates && state.inPreview);
    }
}

TEST(MainKeys, OtherKeysDoNothing) {
    const auto state =
        after(sampleState(), {'j', key::left, key::right, key::escape, 'x', 'J', 'K', 4, 0, 255});
    EXPECT_EQ(state.cursor, 1);
    EXPECT_TRUE(state.selected.empty());
    EXPECT_FALSE(state.inPreview || state.inVariableTemplates);
}

TEST(PreviewKeys, EscGoesBackAndOtherKeysDoNothing) {
    EXPECT_FALSE(after(onPreview(), {key::escape}).inPreview);
    const auto state = after(onPreview(), {' ', 'j', 'k', key::down, 'p', 'x'});
    EXPECT_TRUE(state.inPreview);
    EXPECT_EQ(state.cursor, 0);
    EXPECT_TRUE(state.selected.empty());
}

TEST(VariableKeys, TheCursorStopsAtBothEnds) {
    EXPECT_EQ(after(onVariables(), {key::up, 'k'}).variableTemplateCursor, 0);
    EXPECT_EQ(after(onVariables(), {key::down}).variableTemplateCursor, 1);
    EXPECT_EQ(after(onVariables(), {'j', key::down, 'j'}).variableTemplateCursor, 1);
    EXPECT_EQ(after(onVariables(), {'j', 'k'}).variableTemplateCursor, 0);
    EXPECT_EQ(after(onVariables(), {'j'}).cursor, 0);
}

TEST(VariableKeys, EscLeavesAndQuitKeysQuit) {
    EXPECT_FALSE(after(onVariables(), {key::escape}).inVariableTemplates);
    for (const std::int32_t pressed :
         {static_cast<std::int32_t>('q'), static_cast<std::int32_t>('Q'), key::endOfInput}) {
        EXPECT_EQ(pressKey(onVariables(), pressed).action, SelectorAction::quit);
    }
    EXPECT_TRUE(after(onVariables(), {' ', 'p', 't', 'v', 'x'}).inVariableTemplates);
}

TEST(VariableKeys, EnterTakesAllValuesOverOldOnesAndLeaves) {
    for (const std::int32_t enter : {10, 13}) {
        auto state = after(sampleState(), {'j', ' '});
        state.variableValues = {{"func", "old"}, {"other", "kept"}};
        state = after(std::move(state), {'t', enter});
        EXPECT_FALSE(state.inVariableTemplates);
        EXPECT_THAT(state.variableValues,
                    ElementsAre(Pair("basis", "def2SVP"), Pair("func", "PBE0"), Pair("other", "kept")));
        EXPECT_EQ(state.previewText,
                  "define:\n  basis: def2SVP\n  func: PBE0\n\n$sp\n  %keywords \"[func]/[basis]\"\n\n");
    }
}

TEST(VariableKeys, ATemplateChosenFromThePreviewReturnsToThePreview) {
    const auto state = after(sampleState(), {'j', ' ', 'p', 't', 10});
    EXPECT_TRUE(state.inPreview);
    EXPECT_FALSE(state.inVariableTemplates);
    EXPECT_TRUE(after(sampleState(), {'p', 't', key::escape}).inPreview);
}

TEST(EmptyLists, NoKeyLeavesTheLists) {
    const std::vector<std::int32_t> everyKey{key::up,     key::down, 'j', 'k', ' ', 'p',
                                             key::escape, 't',       'j', 'k', 10};
    const auto state = scrollToCursors(after(SelectorState{}, everyKey));
    EXPECT_EQ(state.cursor, 0);
    EXPECT_EQ(state.variableTemplateCursor, 0);
    EXPECT_FALSE(state.inVariableTemplates);
    EXPECT_TRUE(state.selected.empty());
}

TEST(Scrolling, TheViewFollowsTheCursorAndStaysInTheList) {
    struct Row {
        std::int32_t offset, cursor, count, result;
    };
    for (const auto& row :
         {Row{0, 19, 25, 0}, Row{0, 20, 25, 1}, Row{1, 24, 25, 5}, Row{5, 5, 25, 5}, Row{5, 4, 25, 4},
          Row{9, 9, 25, 5}, Row{3, 3, 4, 0}, Row{0, 0, 0, 0}, Row{0, 19, 20, 0}}) {
        EXPECT_EQ(scrolledOffset(row.offset, row.cursor, row.count), row.result)
            << row.offset << " " << row.cursor << " " << row.count;
    }
}

TEST(Scrolling, BothListsScroll) {
    auto state = longState(25);
    for (int i = 0; i < 20; ++i) {
        state = scrollToCursors(after(std::move(state), {'j'}));
    }
    EXPECT_EQ(state.scrollOffset, 1);
    EXPECT_EQ(state.variableTemplateScroll, 0);
    state.inVariableTemplates = true;
    for (int i = 0; i < 22; ++i) {
        state = scrollToCursors(after(std::move(state), {'j'}));
    }
    EXPECT_EQ(state.variableTemplateScroll, 3);
    EXPECT_EQ(state.scrollOffset, 1);
}

TEST(Preview, WithNothingSelectedSaysSo) {
    EXPECT_EQ(onPreview().previewText, "No templates selected");
}

TEST(Preview, MergesInOrderOfSelectionAfterTheDefines) {
    auto state = after(sampleState(), {'j', ' ', 'k', ' '});
    state.variableValues = {{"func", "B3LYP"}, {"unused", "x"}};
    EXPECT_EQ(after(std::move(state), {'p'}).previewText,
              "define:\n  basis: \n  func: B3LYP\n\nautorun: true\n\n"
              "$sp\n  %keywords \"[func]/[basis]\"\n\n\n$opt\n  %keywords \"opt [func]\"\n\n");
}

TEST(Preview, AFileWithoutHeadRunsByItself) {
    EXPECT_EQ(after(sampleState(), {'j', 'j', ' ', 'p'}).previewText,
              "autorun: true\n\n$note\n  %program script\n\n");
}

TEST(Selection, VariablesOfAllSelectedTemplatesInAscendingOrder) {
    EXPECT_THAT(selectedVariables(sampleState()), ElementsAre());
    EXPECT_THAT(selectedVariables(after(sampleState(), {' ', 'j', ' ', 'j', ' '})),
                ElementsAre("basis", "func"));
}

TEST(Selection, MissingAndEmptyValuesAreUnset) {
    SelectorState state;
    state.variableValues = {{"a", ""}, {"b", "x"}};
    EXPECT_EQ(shownValue(state, "a"), "(unset)");
    EXPECT_EQ(shownValue(state, "b"), "x");
    EXPECT_EQ(shownValue(state, "c"), "(unset)");
}

TEST(PageOf, TheVariableTemplatesLieOverThePreview) {
    SelectorState state;
    EXPECT_EQ(pageOf(state), Page::main);
    state.inPreview = true;
    EXPECT_EQ(pageOf(state), Page::preview);
    state.inVariableTemplates = true;
    EXPECT_EQ(pageOf(state), Page::variableTemplates);
    state.inPreview = false;
    EXPECT_EQ(pageOf(state), Page::variableTemplates);
}

} // namespace
} // namespace morquill::templates
