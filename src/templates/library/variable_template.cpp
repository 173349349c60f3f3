#include "templates/library/variable_template.h"

#include "support/file.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "templates/library/template_library.h"
#include "templates/library/template_walk.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace morquill::templates {

namespace {

VariableTemplate readVariableTemplate(const FoundFile& file) {
    const auto text = readTextFile(file.path);
    if (!text) {
        throw std::runtime_error("could not open file");
    }
    auto result = parseVariableTemplate(skipByteOrderMark(*text), file.stem);
    result.path = file.path;
    return result;
}

/// `key: value`, split at the first colon.
void takeVariable(std::string_view line, taskdsl::ValueMap& values) {
    const auto colon = line.find(':');
    if (colon != std::string_view::npos) {
        values.insert_or_assign(std::string(trim(line.substr(0, colon))),
                                std::string(taskdsl::unquote(line.substr(colon + 1))));
    }
}

} // namespace

VariableTemplate parseVariableTemplate(std::string_view text, std::string_view defaultName) {
    constexpr std::string_view nameKey = "name:";
    constexpr std::string_view descriptionKey = "description:";
    constexpr std::string_view variablesKey = "variables:";
    VariableTemplate result;
    result.name = defaultName;
    bool inVariables = false;
    for (const auto line : splitLines(text)) {
        const auto content = trim(line);
        if (content.empty() || content.starts_with('#')) {
            continue;
        }
        if (line.starts_with(' ') || line.starts_with('\t')) {
            if (inVariables) {
                takeVariable(content, result.values);
            }
        } else if (line.starts_with(nameKey)) {
            result.name = taskdsl::unquote(line.substr(nameKey.size()));
        } else if (line.starts_with(descriptionKey)) {
            result.description = taskdsl::unquote(line.substr(descriptionKey.size()));
        } else {
            inVariables = line.starts_with(variablesKey);
        }
    }
    return result;
}

std::vector<VariableTemplate> loadVariableTemplates(std::string_view pathList) {
    std::vector<VariableTemplate> templates;
    for (const auto& source : splitTemplateSources(pathList)) {
        loadFiles(source.directory, {".yaml", ".yml"}, "variable template",
                  [&](const FoundFile& file) { templates.push_back(readVariableTemplate(file)); });
    }
    return templates;
}

const VariableTemplate* findVariableTemplate(const std::vector<VariableTemplate>& templates,
                                             std::string_view name) {
    const auto found = std::find_if(templates.begin(), templates.end(),
                                    [&](const auto& entry) { return entry.name == name; });
    return found == templates.end() ? nullptr : &*found;
}

} // namespace morquill::templates
