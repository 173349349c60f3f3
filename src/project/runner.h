#pragma once

#include <optional>
#include <string>

/// The project runner `mqrun`: where it is and how it is started.
namespace morquill::project {

/// The path of the project runner `mqrun` as the configuration that holds in the project root names it,
/// or its bare name. Relative paths in it start at the root, wherever the program runs.
[[nodiscard]] std::string resolveRunner(const std::string& root);

/// "configured project runner not found: <runner>".
[[nodiscard]] std::string noRunner(const std::string& runner);

/// The command line that starts the runner on a project, quoted for a shell.
[[nodiscard]] std::string runnerCommand(const std::string& runner, const std::string& root);
/// Starts the runner on a project, in its directory. Returns nothing on success, else the reason.
[[nodiscard]] std::optional<std::string> runRunner(const std::string& runner, const std::string& root);

} // namespace morquill::project
