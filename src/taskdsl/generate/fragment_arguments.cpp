#include "taskdsl/generate/fragment_arguments.h"

#include "taskdsl/base/limits.h"
#include "taskdsl/base/line_fault.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

/// Resolves parameters depth first. The path is a stack of its own, so that a long chain of parameters does
/// not end the program's stack.
class ParameterResolver {
  public:
    ParameterResolver(const ValueMap& boundValues, const FragmentDefinition& fragment, const SourceLine& line)
        : bound(boundValues), definition(fragment), includeLine(line) {}

    ValueMap resolveAll() {
        for (const auto& parameter : definition.parameters) {
            resolve(parameter.name);
        }
        return std::move(resolved);
    }

  private:
    struct Step {
        std::string_view name;
        std::vector<std::string> references; ///< those still to be resolved, the next one at the end
    };

    void enter(std::string_view name) {
        const auto& value = bound.find(name)->second;
        std::vector<std::string> references;
        for (auto& key : bracketKeys(value)) {
            if (bound.find(key) != bound.end()) {
                references.push_back(std::move(key));
            }
        }
        std::reverse(references.begin(), references.end());
        path.push_back({name, std::move(references)});
        onPath.emplace(name, path.size() - 1);
    }

    void resolve(const std::string& start) {
        if (resolved.count(start) != 0) {
            return;
        }
        enter(start);
        while (!path.empty()) {
            Step& step = path.back();
            if (step.references.empty()) {
                keep(step.name, substituteBrackets(bound.find(step.name)->second, resolved));
                onPath.erase(step.name);
                path.pop_back();
                continue;
            }
            const auto next = bound.find(step.references.back());
            step.references.pop_back();
            if (const auto met = onPath.find(next->first); met != onPath.end()) {
                failCycle(met->second);
            }
            if (resolved.count(next->first) == 0) {
                enter(next->first);
            }
        }
    }

    void keep(std::string_view name, std::string value) {
        size += value.size();
        if (size > limits::substitutedText) {
            throw lineFault(includeLine, {},
                            "parameters of fragment '" + definition.name + "' are longer than " +
                                std::to_string(limits::substitutedText >> 20) + " MiB");
        }
        resolved.emplace(name, std::move(value));
    }

    [[noreturn]] void failCycle(std::size_t begin) const {
        std::string chain;
        for (std::size_t i = begin; i < path.size(); ++i) {
            chain += std::string(path[i].name) + " -> ";
        }
        chain += path[begin].name;
        throw lineFault(includeLine, {},
                        "fragment parameter reference cycle in '" + definition.name + "': " + chain);
    }

    const ValueMap& bound;
    const FragmentDefinition& definition;
    const SourceLine& includeLine;
    ValueMap resolved;
    std::size_t size = 0; ///< bytes of the resolved values
    std::vector<Step> path;
    std::map<std::string_view, std::size_t> onPath;
};

} // namespace

ValueMap bindArguments(const FragmentDefinition& definition, const IncludeDirective& include,
                       const SourceLine& includeLine) {
    const auto fault = [&](std::string_view problem, const std::string& name) {
        return lineFault(includeLine, {},
                         std::string(problem) + " argument '" + name + "' for fragment '" + definition.name +
                             "'");
    };
    ValueMap bound;
    for (const auto& parameter : definition.parameters) {
        bound.emplace(parameter.name, parameter.defaultValue);
    }
    for (const auto& [name, value] : include.arguments) {
        const auto parameter = bound.find(name);
        if (parameter == bound.end()) {
            throw fault("unknown", name);
        }
        parameter->second = value;
    }
    bool refers = false;
    for (const auto& parameter : definition.parameters) {
        if (parameter.required && include.arguments.count(parameter.name) == 0) {
            throw fault("missing required", parameter.name);
        }
        refers = refers || bound.find(parameter.name)->second.find('[') != std::string::npos;
    }
    return refers ? ParameterResolver(bound, definition, includeLine).resolveAll() : bound;
}

} // namespace morquill::taskdsl
