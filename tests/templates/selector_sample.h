#pragma once

#include "templates/selector_state.h"

#include <string>
#include <vector>

namespace morquill::templates {

/// A template with the given text, as the catalogue makes it.
inline TaskTemplate sampleTemplate(const std::string& name, const std::string& category,
                                   const std::string& content,
                                   const std::vector<std::string>& variables = {}) {
    return {name, content, category, variables, {}};
}

/// A selector over three templates in two categories and two variable templates.
inline SelectorState sampleState() {
    TemplateLibrary library;
    library.templates = {
        sampleTemplate("sp", "single", "$sp\n  %keywords \"[func]/[basis]\"\n", {"basis", "func"}),
        sampleTemplate("opt", "General", "autorun: false\n\n$opt\n  %keywords \"opt [func]\"\n", {"func"}),
        sampleTemplate("note", "single", "$note\n  %program script\n"),
    };
    return makeSelectorState(
        std::move(library),
        {{"dft", "Hybrid functional", "dft.yaml", {{"basis", "def2SVP"}, {"func", "PBE0"}}},
         {"empty", "", "empty.yaml", {}}});
}

/// A selector over `count` templates named t0, t1, ... and as many variable templates v0, v1, ...
inline SelectorState longState(int count) {
    TemplateLibrary library;
    std::vector<VariableTemplate> variables;
    for (int i = 0; i < count; ++i) {
        library.templates.push_back(sampleTemplate("t" + std::to_string(i), "c", ""));
        variables.push_back({"v" + std::to_string(i), "", "", {}});
    }
    return makeSelectorState(std::move(library), std::move(variables));
}

} // namespace morquill::templates
