#pragma once

#include "taskdsl/base/substitute.h"

#include <string>
#include <string_view>
#include <vector>

namespace morquill::templates {

/// One `  name: value` entry per name, as lines of a `define:` section; a name without a value has an empty
/// one, for the user to fill in. The names are expected in the order in which they shall stand.
[[nodiscard]] std::vector<std::string> buildDefineLines(const std::vector<std::string>& names,
                                                        const taskdsl::ValueMap& values);

/// The whole section, "define:" and its entries, without a line end behind the last.
[[nodiscard]] std::string buildDefineSection(const std::vector<std::string>& names,
                                             const taskdsl::ValueMap& values);

/// The task file with that section in place of its own one (from "define:" to the next blank line or block),
/// or in front when it has none.
[[nodiscard]] std::string replaceDefineSection(std::string_view text, std::string_view section);

} // namespace morquill::templates
