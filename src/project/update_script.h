#pragma once

#include <string>
#include <vector>

/// The script `mqkit_update_comd.sh`, which runs the command scripts of updated blocks at a later time.
namespace morquill::project {

/// The bash text: one call per case and selected name, cases outermost, in directories relative to `root`. It
/// finds its own directory, so the project may move and the script may be called from anywhere.
[[nodiscard]] std::string formatComdRunnerScript(const std::string& root,
                                                 const std::vector<std::string>& caseDirs,
                                                 const std::vector<std::string>& selected);

/// Writes the script into `root`, replacing an older one, and makes it executable; `outPath` takes its path,
/// also in a dry run, which writes nothing. True on success.
[[nodiscard]] bool writeComdRunnerScript(const std::string& root, const std::vector<std::string>& caseDirs,
                                         const std::vector<std::string>& selected, bool dryRun,
                                         std::string& outPath);

} // namespace morquill::project
