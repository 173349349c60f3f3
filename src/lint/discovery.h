#pragma once

#include <string>
#include <vector>

namespace morquill::lint {

/// Returns the task files among and below the given paths: normalised, each once, in ascending byte order.
/// Directories are walked to any depth without following links. Whatever does not exist, cannot be read or
/// has an extension other than ".mq" (in any letter case) is skipped.
[[nodiscard]] std::vector<std::string> findTaskFiles(const std::vector<std::string>& paths);

} // namespace morquill::lint
