#pragma once

#include "taskdsl/base/substitute.h"

#include <string>
#include <string_view>
#include <vector>

namespace morquill::templates {

/// A file of default values for the placeholders of templates.
struct VariableTemplate {
    std::string name;
    std::string description;
    std::string path;
    taskdsl::ValueMap values; ///< variable name to value
};

/// Reads the small YAML subset of these files line by line: `name:`, `description:` and an indented
/// `variables:` section. Without a `name:`, the default name is used. The path stays empty.
[[nodiscard]] VariableTemplate parseVariableTemplate(std::string_view text, std::string_view defaultName);

/// Loads all `.yaml` and `.yml` files below the directories of a `:`-separated list, in order of discovery. A
/// file that cannot be read is reported on standard error and left out.
[[nodiscard]] std::vector<VariableTemplate> loadVariableTemplates(std::string_view pathList);

/// Returns the first one with exactly that name; null when there is none.
[[nodiscard]] const VariableTemplate* findVariableTemplate(const std::vector<VariableTemplate>& templates,
                                                           std::string_view name);

} // namespace morquill::templates
