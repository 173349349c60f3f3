#include "taskdsl/generate/parse_context.h"

#include "support/file.h"

#include <utility>

namespace morquill::taskdsl {

ValueMap libraryBindings(const DocumentContext& document) {
    ValueMap bindings;
    for (const auto& [alias, library] : document.namespaces) {
        bindings.emplace(alias, library->path);
    }
    return bindings;
}

void ParseContext::countInclude() {
    if (++includeCount > limits::includes) {
        throw DiagnosticError("more than " + std::to_string(limits::includes) +
                              " &INCLUDE lines were followed");
    }
}

bool ParseContext::hasFile(const std::string& path) const {
    return (overlay && overlay(path)) || isRegularFile(path);
}

std::optional<std::string> ParseContext::readFile(const std::string& path) const {
    auto text = overlay ? overlay(path) : std::nullopt;
    return text ? std::move(text) : readTextFile(path);
}

} // namespace morquill::taskdsl
