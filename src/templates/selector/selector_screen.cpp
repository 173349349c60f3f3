#include "templates/selector/selector_screen.h"

#include "support/text.h"

#include <algorithm>
#include <cstdint>

namespace morquill::templates {

namespace {

constexpr std::string_view checkMark = "\u2713 ";
constexpr std::string_view cursorMark = "\u2192 ";
constexpr std::string_view noMark = "  ";
constexpr std::string_view moveControl = "  \u2191/\u2193  Move cursor\n";
constexpr std::string_view moreAbove = "  \u2191 more items above\n";
constexpr std::string_view moreBelow = "  \u2193 more items below\n";

constexpr std::string_view mainControls = "  Space Select/unselect template\n"
                                          "  p     Preview selected templates\n"
                                          "  v     Edit variables\n"
                                          "  t     Choose variable template\n"
                                          "  Enter Generate task file\n"
                                          "  q     Quit\n";
constexpr std::string_view previewControls = "  Esc   Back to template selection\n"
                                             "  v     Edit variables\n"
                                             "  t     Choose variable template\n"
                                             "  Enter Generate task file\n"
                                             "  q     Quit\n";
constexpr std::string_view variableControls = "  Enter Apply selected variable template\n"
                                              "  Esc   Back to main screen\n"
                                              "  q     Quit\n";
constexpr std::string_view variableExample = "name: \"Basic DFT setup\"\n"
                                             "description: \"Basic variables for DFT jobs\"\n"
                                             "variables:\n"
                                             "  func: \"B3LYP\"\n"
                                             "  basis: \"6-31G(d)\"\n";

/// The visible rows of a list.
struct View {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string_view above;
    std::string_view below;
};

View viewOf(std::int32_t offset, std::size_t count) {
    View view;
    view.begin = std::min(static_cast<std::size_t>(std::max(offset, 0)), count);
    view.end = std::min(view.begin + static_cast<std::size_t>(viewRows), count);
    view.above = view.begin > 0 ? moreAbove : std::string_view{};
    view.below = view.end < count ? moreBelow : std::string_view{};
    return view;
}

bool isAt(std::int32_t cursor, std::size_t row) noexcept {
    return static_cast<std::int64_t>(row) == cursor;
}

std::string itemRow(const SelectorState& state, std::size_t row) {
    const auto& item = state.items[row];
    std::string text(isAt(state.cursor, row) ? cursorMark : noMark);
    text += isSelected(state, item.name) ? checkMark : noMark;
    text += item.name;
    if (!item.category.empty()) {
        text += " (" + item.category + ")";
    }
    if (!item.variables.empty()) {
        text += " [variables: " + std::to_string(item.variables.size()) + "]";
    }
    return text + "\n";
}

std::string mainScreen(const SelectorState& state) {
    std::string text = "=== Morquill interactive template selector ===\n\n";
    text += "Selected templates (" + std::to_string(state.selected.size()) + "):\n";
    for (const auto& name : state.selected) {
        text += "  " + std::string(checkMark) + name + "\n";
    }
    if (state.selected.empty()) {
        text += "  (none)\n";
    }
    text += "\nAvailable templates (" + std::to_string(state.cursor + 1) + "/" +
            std::to_string(state.items.size()) + "):\n";
    const View view = viewOf(state.scrollOffset, state.items.size());
    for (std::size_t row = view.begin; row < view.end; ++row) {
        text += itemRow(state, row);
    }
    text.append(view.above).append(view.below);
    return text.append("\nControls:\n").append(moveControl).append(mainControls);
}

std::string previewScreen(const SelectorState& state) {
    const std::string ruler(40, '-');
    std::string text = "=== Template preview ===\n\n";
    if (state.selected.empty()) {
        text += "No templates selected\n";
    } else {
        text +=
            "Selected: " + join(state.selected, ", ") + "\n\nPreview:\n" + ruler + "\n" + state.previewText;
        text += state.previewText.ends_with('\n') ? "\n" : "\n\n";
        text += ruler + "\n";
    }
    return text.append("\nControls:\n").append(previewControls);
}

std::string variableRow(const SelectorState& state, std::size_t row) {
    const auto& entry = state.variableTemplates[row];
    const bool current = isAt(state.variableTemplateCursor, row);
    std::string text(current ? cursorMark : noMark);
    text += entry.name;
    if (!entry.description.empty()) {
        text += " - " + entry.description;
    }
    text += "\n";
    if (current) {
        std::vector<std::string> pairs;
        for (const auto& [name, value] : entry.values) {
            pairs.push_back(name);
            pairs.back().append("=").append(value);
        }
        text += "    Variables: " + (pairs.empty() ? "(none)" : join(pairs, ", ")) + "\n";
    }
    return text;
}

std::string variableScreen(const SelectorState& state) {
    std::string text = "=== Variable template selection ===\n\n";
    if (state.variableTemplates.empty()) {
        text += "No variable template files were found (.yaml/.yml)\n\nVariable template example:\n";
        text.append(variableExample).append("\n");
    } else {
        text += "Available variable templates (" + std::to_string(state.variableTemplateCursor + 1) + "/" +
                std::to_string(state.variableTemplates.size()) + "):\n\n";
        const View view = viewOf(state.variableTemplateScroll, state.variableTemplates.size());
        for (std::size_t row = view.begin; row < view.end; ++row) {
            text += variableRow(state, row);
        }
        text.append("\n").append(view.above).append(view.below);
    }
    return text.append("Controls:\n").append(moveControl).append(variableControls);
}

} // namespace

std::string currentScreen(const SelectorState& state) {
    switch (pageOf(state)) {
    case Page::preview:
        return previewScreen(state);
    case Page::variableTemplates:
        return variableScreen(state);
    case Page::main:
        break;
    }
    return mainScreen(state);
}

} // namespace morquill::templates
