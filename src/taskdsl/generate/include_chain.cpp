#include "taskdsl/generate/include_chain.h"

#include "support/paths.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <utility>

namespace morquill::taskdsl {

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& key, std::string shown) : chain_(owner) {
    chain_.enter(key, std::move(shown));
}

IncludeChain::Entry::Entry(IncludeChain& owner, const std::string& path) : chain_(owner) {
    if (chain_.elements_.empty()) {
        chain_.elements_.push_back({std::nullopt, path});
    } else {
        chain_.enter(normalisedPath(path), path);
    }
}

IncludeChain::Entry::~Entry() {
    if (const auto& key = chain_.elements_.back().key) {
        chain_.keys_.erase(*key);
    }
    chain_.elements_.pop_back();
}

void IncludeChain::enter(const std::string& key, std::string shown) {
    if (!elements_.empty() && !elements_.front().key) {
        elements_.front().key = keys_.insert(normalisedPath(elements_.front().shown)).first;
    }
    if (keys_.count(key) != 0) {
        std::string message(label_);
        message += " cycle detected: ";
        for (const auto& element : elements_) {
            message += element.shown + " -> ";
        }
        throw DiagnosticError(message + shown);
    }
    if (elements_.size() == limits::includeDepth) {
        throw DiagnosticError(std::string(label_) + " is nested more than " +
                              std::to_string(limits::includeDepth) + " deep: " + shown);
    }
    elements_.push_back({keys_.insert(key).first, std::move(shown)});
}

} // namespace morquill::taskdsl
