#include "taskdsl/generate/parse_context.h"

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

} // namespace morquill::taskdsl
