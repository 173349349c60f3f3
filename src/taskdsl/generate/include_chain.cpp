#include "taskdsl/generate/include_chain.h"

#include "support/paths.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& key, std::string shown) : chain_(owner) {
    if (chain_.keys_.count(key) != 0) {
        std::string message(chain_.label_);
        message += " cycle detected: ";
        for (const auto& element : chain_.elements_) {
            message += element.shown + " -> ";
        }
        throw DiagnosticError(message + shown);
    }
    if (chain_.elements_.size() == limits::includeDepth) {
        throw DiagnosticError(std::string(chain_.label_) + " is nested more than " +
                              std::to_string(limits::includeDepth) + " deep: " + shown);
    }
    chain_.elements_.push_back({chain_.keys_.insert(key).first, std::move(shown)});
}

IncludeChain::Entry::~Entry() {
    chain_.keys_.erase(chain_.elements_.back().key);
    chain_.elements_.pop_back();
}

IncludeChain::Entry enterFile(IncludeChain& chain, const std::string& path) {
    return {chain, normalisedPath(path), path};
}

} // namespace morquill::taskdsl
