#include "templates/selector/selector_state.h"

#include "templates/library/define_section.h"
#include "templates/library/merge.h"
#include "templates/library/template_text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace morquill::templates {

namespace {

/// Moves a cursor by one row; it stops at both ends of the list.
template <class T>
std::int32_t moved(std::int32_t cursor, std::int32_t by, const std::vector<T>& list) noexcept {
    return std::clamp(cursor + by, 0, std::max(static_cast<std::int32_t>(list.size()) - 1, 0));
}

using KeyEffect = SelectorAction (*)(SelectorState& state);

SelectorAction quit(SelectorState& /*state*/) {
    return SelectorAction::quit;
}

SelectorAction edit(SelectorState& /*state*/) {
    return SelectorAction::edit;
}

SelectorAction generate(SelectorState& /*state*/) {
    return SelectorAction::generate;
}

template <std::int32_t by>
SelectorAction moveCursor(SelectorState& state) {
    state.cursor = moved(state.cursor, by, state.items);
    return SelectorAction::none;
}

SelectorAction toggle(SelectorState& state) {
    if (state.items.empty()) {
        return SelectorAction::none;
    }
    const auto& name = state.items[static_cast<std::size_t>(state.cursor)].name;
    const auto place = std::find(state.selected.begin(), state.selected.end(), name);
    if (place == state.selected.end()) {
        state.selected.push_back(name);
    } else {
        state.selected.erase(place);
    }
    return SelectorAction::none;
}

SelectorAction showPreview(SelectorState& state) {
    state.previewText = composePreview(state);
    state.inPreview = true;
    return SelectorAction::none;
}

SelectorAction leavePreview(SelectorState& state) {
    state.inPreview = false;
    return SelectorAction::none;
}

SelectorAction showVariables(SelectorState& state) {
    state.inVariableTemplates = true;
    return SelectorAction::none;
}

template <std::int32_t by>
SelectorAction moveVariables(SelectorState& state) {
    state.variableTemplateCursor = moved(state.variableTemplateCursor, by, state.variableTemplates);
    return SelectorAction::none;
}

SelectorAction takeVariables(SelectorState& state) {
    if (!state.variableTemplates.empty()) {
        const auto& chosen = state.variableTemplates[static_cast<std::size_t>(state.variableTemplateCursor)];
        for (const auto& [name, value] : chosen.values) {
            state.variableValues.insert_or_assign(name, value);
        }
    }
    state.previewText = composePreview(state);
    state.inVariableTemplates = false;
    return SelectorAction::none;
}

SelectorAction leaveVariables(SelectorState& state) {
    state.inVariableTemplates = false;
    return SelectorAction::none;
}

/// A key of a screen; keys that are not listed do nothing.
struct KeyRow {
    std::int32_t pressed;
    KeyEffect effect;
};

constexpr KeyRow mainKeys[] = {
    {key::up, moveCursor<-1>},
    {'k', moveCursor<-1>},
    {key::down, moveCursor<1>},
    {'j', moveCursor<1>},
    {' ', toggle},
    {'p', showPreview},
    {'P', showPreview},
    {'t', showVariables},
    {'T', showVariables},
    {'v', edit},
    {'V', edit},
    {key::lineFeed, generate},
    {key::carriageReturn, generate},
    {'q', quit},
    {'Q', quit},
    {key::endOfInput, quit},
};

constexpr KeyRow previewKeys[] = {
    {key::escape, leavePreview},
    {'t', showVariables},
    {'T', showVariables},
    {'v', edit},
    {'V', edit},
    {key::lineFeed, generate},
    {key::carriageReturn, generate},
    {'q', quit},
    {'Q', quit},
    {key::endOfInput, quit},
};

constexpr KeyRow variableKeys[] = {
    {key::up, moveVariables<-1>},
    {'k', moveVariables<-1>},
    {key::down, moveVariables<1>},
    {'j', moveVariables<1>},
    {key::escape, leaveVariables},
    {key::lineFeed, takeVariables},
    {key::carriageReturn, takeVariables},
    {'q', quit},
    {'Q', quit},
    {key::endOfInput, quit},
};

template <std::size_t N>
SelectorAction pressOn(const KeyRow (&keys)[N], SelectorState& state, std::int32_t pressed) {
    const auto* row = std::find_if(std::begin(keys), std::end(keys),
                                   [&](const auto& entry) { return entry.pressed == pressed; });
    return row == std::end(keys) ? SelectorAction::none : row->effect(state);
}

} // namespace

SelectorState makeSelectorState(TemplateLibrary library, std::vector<VariableTemplate> variableTemplates) {
    SelectorState state;
    state.items = library.templates;
    std::stable_sort(state.items.begin(), state.items.end(),
                     [](const auto& left, const auto& right) { return left.category < right.category; });
    state.library = std::move(library);
    state.variableTemplates = std::move(variableTemplates);
    return state;
}

Page pageOf(const SelectorState& state) noexcept {
    if (state.inVariableTemplates) {
        return Page::variableTemplates;
    }
    return state.inPreview ? Page::preview : Page::main;
}

SelectorStep pressKey(SelectorState state, std::int32_t pressed) {
    SelectorStep step{std::move(state), SelectorAction::none};
    switch (pageOf(step.state)) {
    case Page::main:
        step.action = pressOn(mainKeys, step.state, pressed);
        break;
    case Page::preview:
        step.action = pressOn(previewKeys, step.state, pressed);
        break;
    case Page::variableTemplates:
        step.action = pressOn(variableKeys, step.state, pressed);
        break;
    }
    return step;
}

std::int32_t scrolledOffset(std::int32_t offset, std::int32_t cursor, std::int32_t count) noexcept {
    if (cursor < offset) {
        offset = cursor;
    } else if (cursor >= offset + viewRows) {
        offset = cursor - viewRows + 1;
    }
    return std::clamp(offset, 0, std::max(count - viewRows, 0));
}

SelectorState scrollToCursors(SelectorState state) {
    state.scrollOffset =
        scrolledOffset(state.scrollOffset, state.cursor, static_cast<std::int32_t>(state.items.size()));
    state.variableTemplateScroll = scrolledOffset(state.variableTemplateScroll, state.variableTemplateCursor,
                                                  static_cast<std::int32_t>(state.variableTemplates.size()));
    return state;
}

bool isSelected(const SelectorState& state, std::string_view name) {
    return std::find(state.selected.begin(), state.selected.end(), name) != state.selected.end();
}

std::vector<std::string> selectedVariables(const SelectorState& state) {
    std::set<std::string> names;
    for (const auto& name : state.selected) {
        if (const TaskTemplate* found = findTemplate(state.library, name)) {
            names.insert(found->variables.begin(), found->variables.end());
        }
    }
    return {names.begin(), names.end()};
}

std::string shownValue(const SelectorState& state, const std::string& name) {
    const auto found = state.variableValues.find(name);
    return found == state.variableValues.end() || found->second.empty() ? "(unset)" : found->second;
}

std::string composePreview(const SelectorState& state) {
    if (state.selected.empty()) {
        return "No templates selected";
    }
    std::vector<std::string_view> texts;
    for (const auto& name : state.selected) {
        if (const TaskTemplate* found = findTemplate(state.library, name)) {
            texts.emplace_back(found->content);
        }
    }
    std::string text = mergeTemplateTexts(texts);
    if (const auto names = scanPlaceholders(text, BuiltIns::drop); !names.empty()) {
        text = buildDefineSection(names, state.variableValues) + "\n\n" + text;
    }
    return withAutorun(text);
}

} // namespace morquill::templates
