#pragma once

#include "system/terminal.h"
#include "taskdsl/base/substitute.h"
#include "templates/library/template_library.h"
#include "templates/library/variable_template.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The interactive selector as a value: what is on the screen, and what a key makes of it. Nothing here
/// reads, prints or writes a file.
namespace morquill::templates {

namespace key = system::key;

/// Rows of a list that are shown at a time.
inline constexpr std::int32_t viewRows = 20;

struct SelectorState {
    TemplateLibrary library;
    std::vector<TaskTemplate> items;   ///< the templates in display order: by category, then as found
    std::vector<std::string> selected; ///< template names in order of selection
    taskdsl::ValueMap variableValues;  ///< variable name to value
    std::vector<VariableTemplate> variableTemplates;
    std::int32_t cursor = 0; ///< index in `items`
    bool inPreview = false;
    bool inVariableTemplates = false; ///< wins over `inPreview`
    std::int32_t variableTemplateCursor = 0;
    std::string previewText;       ///< the task file that would be generated
    std::int32_t scrollOffset = 0; ///< first row in view
    std::int32_t variableTemplateScroll = 0;
};

/// What the program has to do after a key, beyond showing the new state.
enum class SelectorAction { none, quit, edit, generate };

struct SelectorStep {
    SelectorState state;
    SelectorAction action = SelectorAction::none;
};

/// The state at the start.
[[nodiscard]] SelectorState makeSelectorState(TemplateLibrary library,
                                              std::vector<VariableTemplate> variableTemplates);

/// What a key on the current screen does.
[[nodiscard]] SelectorStep pressKey(SelectorState state, std::int32_t pressed);

/// The state with both lists scrolled so that their cursors are in view.
[[nodiscard]] SelectorState scrollToCursors(SelectorState state);
/// The first row in view for a list of `count` rows.
[[nodiscard]] std::int32_t scrolledOffset(std::int32_t offset, std::int32_t cursor,
                                          std::int32_t count) noexcept;

/// True for a template that is ticked.
[[nodiscard]] bool isSelected(const SelectorState& state, std::string_view name);
/// The variables of all selected templates, in ascending order.
[[nodiscard]] std::vector<std::string> selectedVariables(const SelectorState& state);
/// The text of a value, "(unset)" for one that is missing or empty.
[[nodiscard]] std::string shownValue(const SelectorState& state, const std::string& name);

/// The task file that the selection makes: define section, merged templates, `autorun` set.
[[nodiscard]] std::string composePreview(const SelectorState& state);

} // namespace morquill::templates
