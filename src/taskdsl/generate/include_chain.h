#pragma once

#include <optional>
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
        /// Enters a file: told apart by its canonical path, which is not asked for before there is a second
        /// element, shown by the path as resolved. Throws as the other.
        Entry(IncludeChain& chain, const std::string& path);
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        ~Entry();

      private:
        IncludeChain& chain_;
    };

  private:
    /// The first file, whose key is not known yet, has none among the keys.
    struct Element {
        std::optional<std::set<std::string>::iterator> key;
        std::string shown;
    };
    void enter(const std::string& key, std::string shown);

    std::string_view label_;
    std::vector<Element> elements_;
    std::set<std::string> keys_;
};

} // namespace morquill::taskdsl
