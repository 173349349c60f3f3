#include "taskdsl/generate/include_chain.h"

#include "support/paths.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& key, std::string shown) : chain(owner) {
    if (chain.keys.count(key) != 0) {
        std::string message(chain.label);
        message += " cycle detected: ";
        for (const auto& element : chain.elements) {
            message += element.shown + " -> ";
        }
        throw DiagnosticError(message + shown);
    }
    if (chain.elements.size() == limits::includeDepth) {
        throw DiagnosticError(std::string(chain.label) + " is nested more than " +
                              std::to_string(limits::includeDepth) + " deep: " + shown);
    }
    chain.elements.push_back({chain.keys.insert(key).first, std::move(shown)});
}

IncludeChain::Entry::~Entry() {
    chain.keys.erase(chain.elements.back().key);
    chain.elements.pop_back();
}

IncludeChain::Entry enterFile(IncludeChain& chain, const std::string& path) {
    return {chain, normalisedPath(path), path};
}

} // namespace morquill::taskdsl
