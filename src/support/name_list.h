#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace morquill {

/// Names in order of first appearance, each once, none of them empty.
class NameList {
  public:
    void add(std::string_view name) {
        if (!name.empty() && seen_.emplace(name).second) {
            names_.emplace_back(name);
        }
    }
    [[nodiscard]] const std::vector<std::string>& names() const noexcept { return names_; }

  private:
    std::vector<std::string> names_;
    std::unordered_set<std::string> seen_;
};

} // namespace morquill
