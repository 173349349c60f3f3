#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace morquill::taskdsl {

/// The files (or fragments) that are being read, one inside the other, the innermost at the end.
class IncludeChain {
  public:
    /// `name` is the kind of inclusion in messages, as in "task include cycle detected: ...".
    explicit IncludeChain(std::string_view name) : label_(name) {}

    /// Enters an element for the time of a scope.
    class Entry {
      public:
        /// `key` identifies the element, `shown` is what messages print. Throws `DiagnosticError`
        /// with the whole chain when the element is on it already, or when the chain
        /// grows beyond `limits::includeDepth`.
        Entry(IncludeChain& chain, const std::string& key, std::string shown);
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        ~Entry();

      private:
        IncludeChain& chain_;
    };

  private:
    struct Element {
        std::set<std::string>::iterator key;
        std::string shown;
    };
    std::string_view label_;
    std::vector<Element> elements_;
    std::set<std::string> keys_;
};

/// Enters a file for the time of a scope: identified by its canonical path, shown by the path as resolved.
[[nodiscard]] IncludeChain::Entry enterFile(IncludeChain& chain, const std::string& path);

} // namespace morquill::taskdsl
