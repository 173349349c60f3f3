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
/// not exhaust the program's stack.
class ParameterResolver {
  public:
    ParameterResolver(const ValueMap& boundValues, const FragmentDefinition& fragment, const SourceLine& line)
        : bound_(boundValues), definition_(fragment), includeLine_(line) {}

    ValueMap resolveAll() {
        for (const auto& parameter : definition_.parameters) {
            resolve(parameter.name);
        }
        return std::move(resolved_);
    }

  private:
    struct Step {
        std::string_view name;
        std::vector<std::string> references; ///< those still to be resolved, the next one at the end
    };

    void enter(std::string_view name) {
        const auto& value = bound_.find(name)->second;
        std::vector<std::string> references;
        for (auto& key : bracketKeys(value)) {
            if (bound_.find(key) != bound_.end()) {
                references.push_back(std::move(key));
            }
        }
        std::reverse(references.begin(), references.end());
        path_.push_back({name, std::move(references)});
        onPath_.emplace(name, path_.size() - 1);
    }

    void resolve(const std::string& start) {
        if (resolved_.count(start) != 0) {
            return;
        }
        enter(start);
        while (!path_.empty()) {
            Step& step = path_.back();
            if (step.references.empty()) {
                keep(step.name, substituteBrackets(bound_.find(step.name)->second, resolved_));
                onPath_.erase(step.name);
                path_.pop_back();
                continue;
            }
            const auto next = bound_.find(step.references.back());
            step.references.pop_back();
            if (const auto met = onPath_.find(next->first); met != onPath_.end()) {
                failCycle(met->second);
            }
            if (resolved_.count(next->first) == 0) {
                enter(next->first);
            }
        }
    }

    void keep(std::string_view name, std::string value) {
        size_ += value.size();
        if (size_ > limits::substitutedText) {
            throw lineFault(includeLine_, {},
                            "parameters of fragment '" + definition_.name + "' are longer than " +
                                std::to_string(limits::substitutedText >> 20) + " MiB");
        }
        resolved_.emplace(name, std::move(value));
    }

    [[noreturn]] void failCycle(std::size_t begin) const {
        std::string chain;
        for (std::size_t i = begin; i < path_.size(); ++i) {
            chain += std::string(path_[i].name) + " -> ";
        }
        chain += path_[begin].name;
        throw lineFault(includeLine_, {},
                        "fragment parameter reference cycle in '" + definition_.name + "': " + chain);
    }

    const ValueMap& bound_;
    const FragmentDefinition& definition_;
    const SourceLine& includeLine_;
    ValueMap resolved_;
    std::size_t size_ = 0; ///< bytes of the resolved values
    std::vector<Step> path_;
    std::map<std::string_view, std::size_t> onPath_;
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
