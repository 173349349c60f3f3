#pragma once

#include "project/workflows.h"

#include <cstdint>
#include <string>
#include <vector>

/// Cleaning selected blocks and generating them anew.
namespace morquill::project {

/// What a rebuild did, for its summary lines.
struct RebuildSummary {
    std::int32_t cases = 0;
    std::int32_t statusTouched = 0;
    std::int32_t recordsRemoved = 0;
    std::int32_t blocksVisited = 0;
    std::int32_t blocksMissing = 0;
    std::int32_t workMarkers = 0; ///< that were there, also those that could not be removed
    std::int32_t runnerSuccess = 0;
    std::int32_t runnerFailed = 0;
};

/// Rebuilds one case. True on success.
[[nodiscard]] bool rebuildCase(const std::string& caseDir, const std::string& caseFile,
                               const std::vector<std::string>& selected, const RebuildOptions& options);
/// Rebuilds all cases of a project and, when asked for, starts the project runner. True on success.
[[nodiscard]] bool rebuildProject(const std::string& root, const std::string& file,
                                  const std::vector<std::string>& selected, const RebuildOptions& options);

/// The regular files with the extension `.mqwk` that lie directly in a block directory.
[[nodiscard]] std::int32_t countWorkMarkers(const std::string& blockDir);
/// Removes them and returns how many; reports one that stays on standard error.
[[nodiscard]] std::int32_t removeWorkMarkers(const std::string& blockDir);

} // namespace morquill::project
