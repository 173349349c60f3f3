#pragma once

#include "templates/selector/selector_state.h"

#include <string>

namespace morquill::templates {

/// The whole text of the screen that the state shows. The lists are shown from their scroll offsets on.
[[nodiscard]] std::string currentScreen(const SelectorState& state);

} // namespace morquill::templates
