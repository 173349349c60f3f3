#include "taskdsl/generate/include_chain.h"

#include "support/paths.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& key, std::string shown) : chain(owner) {
    chain.enter(key, std::move(shown));
}

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& path) : chain(owner) {
    if (chain.elements.empty()) {
        chain.elements.push_back({std::nullopt, path});
    } else {
        chain.enter(normalisedPath(path), path);
    }
}

IncludeChain::Entry::~Entry() {
    if (const auto& key = chain.elements.back().key) {
        chain.keys.erase(*key);
    }
    chain.elements.pop_back();
}

void IncludeChain::enter(const std::string& key, std::string shown) {
    if (!elements.empty() && !elements.front().key) {
        elements.front().key = keys.insert(normalisedPath(elements.front().shown)).first;
    }
    if (keys.count(key) != 0) {
        std::string message(label);
        message += " cycle detected: ";
        for (const auto& element : elements) {
            message += element.shown + " -> ";
        }
        throw DiagnosticError(message + shown);
    }
    if (elements.size() == limits::includeDepth) {
        throw DiagnosticError(std::string(label) + " is nested more than " +
                              std::to_string(limits::includeDepth) + " deep: " + shown);
    }
    elements.push_back({keys.insert(key).first, std::move(shown)});
}

} // namespace morquill::taskdsl
