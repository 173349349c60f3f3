#include "taskdsl/generate/parse_context.h"

#include "support/file.h"
#include "support/paths.h"

#include <utility>

namespace morquill::taskdsl {

namespace {

ParserOptions completed(ParserOptions options) {
    if (!options.warnings) {
        options.warnings = [](const std::string&) {};
    }
    if (!options.isFile) {
        options.isFile = lookUpRegularFile;
    }
    if (options.overlay) {
        options.isFile = [overlay = options.overlay, onDisk = options.isFile](const std::string& path) {
            return overlay(path).has_value() || onDisk(path);
        };
    }
    return options;
}

} // namespace

bool EnteredFiles::contains(const std::string& path) {
    for (const auto& file : std::exchange(fresh_, {})) {
        canonical_.insert(normalisedPath(file));
    }
    return canonical_.contains(normalisedPath(path));
}

ParseContext::ParseContext(ParserOptions parserOptions) : options(completed(std::move(parserOptions))) {}

void ParseContext::countInclude() {
    if (++includeCount > limits::includes) {
        throw DiagnosticError("more than " + std::to_string(limits::includes) +
                              " &INCLUDE lines were followed");
    }
}

std::optional<std::string> ParseContext::readFile(const std::string& path) const {
    auto text = options.overlay ? options.overlay(path) : std::nullopt;
    return text ? std::move(text) : readTextFile(path);
}

std::string ParseContext::resolveIncludePath(std::string_view name, const std::string& baseFile) const {
    return taskdsl::resolveIncludePath(name, baseFile, options.findLibraryFile);
}

ValueMap libraryBindings(const DocumentContext& document) {
    ValueMap bindings;
    for (const auto& [alias, library] : document.namespaces) {
        bindings.emplace(alias, library->path);
    }
    return bindings;
}

} // namespace morquill::taskdsl
