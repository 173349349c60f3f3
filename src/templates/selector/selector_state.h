#pragma once

#include "system/terminal.h"
#include "taskdsl/base/substitute.h"
#include "templates/library/template_library.h"
#include "templates/library/variable_template.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The interactive selector as a value: what is on the screen,
/// and how a key changes it. There is no input or output here.
namespace morquill::templates {

namespace key = system::key;

/// The number of rows of a list that are visible at a time.
inline constexpr std::int32_t viewRows = 20;

/// Everything the selector remembers between keys.
struct SelectorState {
    TemplateLibrary library;
    std::vector<TaskTemplate> items;   ///< the templates in display order: by category, then as found
    std::vector<std::string> selected; ///< template names in order of selection
    taskdsl::ValueMap variableValues;  ///< variable name to value
    std::vector<VariableTemplate> variableTemplates;
    std::int32_t cursor = 0; ///< index in `items`
    bool inPreview = false;
    bool inVariableTemplates = false; ///< takes precedence over `inPreview`
    std::int32_t variableTemplateCursor = 0;
    std::string previewText;       ///< the task file that would be generated
    std::int32_t scrollOffset = 0; ///< first visible row
    std::int32_t variableTemplateScroll = 0;
};

/// The pages that a state can show.
enum class Page : std::uint8_t { main, preview, variableTemplates };

/// Returns the page of a state. The variable templates lie over the preview, which is there again when they
/// are left.
[[nodiscard]] Page pageOf(const SelectorState& state) noexcept;

/// What to do after a key, besides showing the new state.
enum class SelectorAction { none, quit, edit, generate };

/// The effect of a key.
struct SelectorStep {
    SelectorState state;
    SelectorAction action = SelectorAction::none;
};

/// Returns the state at the start.
[[nodiscard]] SelectorState makeSelectorState(TemplateLibrary library,
                                              std::vector<VariableTemplate> variableTemplates);

/// Returns the effect of a key on the current screen.
[[nodiscard]] SelectorStep pressKey(SelectorState state, std::int32_t pressed);

/// Returns the state with both lists scrolled so that their cursors are visible.
[[nodiscard]] SelectorState scrollToCursors(SelectorState state);
/// Returns the first visible row of a list of `count` rows,
/// moved no further from `offset` than the cursor needs.
[[nodiscard]] std::int32_t scrolledOffset(std::int32_t offset, std::int32_t cursor,
                                          std::int32_t count) noexcept;

/// True when the template is selected.
[[nodiscard]] bool isSelected(const SelectorState& state, std::string_view name);
/// Returns the variables of all selected templates, in ascending order.
[[nodiscard]] std::vector<std::string> selectedVariables(const SelectorState& state);
/// Returns the value of a variable, "(unset)" when it is missing or empty.
[[nodiscard]] std::string shownValue(const SelectorState& state, const std::string& name);

/// Returns the task file made of the selection: define section, merged templates, `autorun` set.
[[nodiscard]] std::string composePreview(const SelectorState& state);

} // namespace morquill::templates
