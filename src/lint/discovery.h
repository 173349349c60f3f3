#pragma once

#include <string>
#include <vector>

namespace morquill::lint {

/// The task files that the given files and directories stand for: normalised, each once, in ascending byte
/// order of the path. Directories are walked to any depth without following links. What does not exist,
/// cannot be read or has another extension than ".mq" (in any letter case) is passed over.
[[nodiscard]] std::vector<std::string> findTaskFiles(const std::vector<std::string>& paths);

} // namespace morquill::lint
