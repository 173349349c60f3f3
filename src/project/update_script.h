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

/// The path of the script of a case or project.
[[nodiscard]] std::string comdRunnerScriptPath(const std::string& root);

/// Writes the script into `root` as a new file, in place of whatever is there, and makes it executable.
/// True on success; otherwise no script is left, since an older one would run other blocks.
/// A directory in its place stays.
[[nodiscard]] bool writeComdRunnerScript(const std::string& root, const std::vector<std::string>& caseDirs,
                                         const std::vector<std::string>& selected);

} // namespace morquill::project
