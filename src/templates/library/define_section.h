#pragma once

#include "taskdsl/base/substitute.h"

#include <string>
#include <string_view>
#include <vector>

namespace morquill::templates {

/// Returns one `  name: value` line of a `define:` section per name, in the order of `names`. A name without
/// a value gets an empty one for the user to fill in.
[[nodiscard]] std::vector<std::string> buildDefineLines(const std::vector<std::string>& names,
                                                        const taskdsl::ValueMap& values);

/// Returns the whole section, "define:" and its entries, without a line end after the last.
[[nodiscard]] std::string buildDefineSection(const std::vector<std::string>& names,
                                             const taskdsl::ValueMap& values);

/// Returns the task file with `section` in place of its own one (from "define:" to the next blank line or
/// block), or before everything else when it has none.
[[nodiscard]] std::string replaceDefineSection(std::string_view text, std::string_view section);

} // namespace morquill::templates
