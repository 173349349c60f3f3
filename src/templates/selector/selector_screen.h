#pragma once

#include "templates/selector/selector_state.h"

#include <string>

namespace morquill::templates {

/// Returns the whole text of the screen for a state. Lists are shown from their scroll offsets on.
[[nodiscard]] std::string currentScreen(const SelectorState& state);

} // namespace morquill::templates
