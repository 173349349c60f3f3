#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The configuration that the tool family shares: the environment, a flat `morquill.conf`, built-in defaults.
/// Nothing is cached; nothing here reports anything.
///
/// `workingDir`, an absolute path, is the directory for which something is looked up: relative paths and
/// `PWD` are those of a program that runs there. An empty one is the current directory.
namespace morquill::console {

/// Key to value, as read from one file; keys are compared exactly.
using RuntimeConfig = std::map<std::string, std::string, std::less<>>;

/// The built-in default of a key; empty for a key that has none.
[[nodiscard]] std::string_view defaultConfigValue(std::string_view key) noexcept;

/// The directories that are searched for a configuration file, in order, each once: ".", two below the home
/// (left out without one), one beside the installed program, "/etc/morquill".
[[nodiscard]] std::vector<std::string> configSearchDirs();

/// The first readable file of that name in the search directories, parsed; empty when there is none.
[[nodiscard]] RuntimeConfig loadConfig(const std::string& fileName, const std::string& workingDir = {});

/// Reads `key = value` lines; comments, blank lines and lines without `=` are skipped, a later line wins.
/// Values are expanded; with a non-empty `configDir` they may name it as `$MORQUILL_CONFIG_DIR`,
/// `${MORQUILL_CONFIG_DIR}` or `%MORQUILL_CONFIG_DIR%`.
[[nodiscard]] RuntimeConfig parseConfigText(std::string_view text, const std::string& configDir,
                                            const std::string& workingDir = {});

/// The environment's non-empty value as it is, else the file's value (also an empty one) expanded, else the
/// default expanded.
[[nodiscard]] std::string getConfigValue(const RuntimeConfig& config, const std::string& key,
                                         const std::string& workingDir = {});

/// The environment's value, or `fallback` when the variable is unset.
[[nodiscard]] std::string getEnvOrDefault(const std::string& name, std::string_view fallback);

/// Expands a leading `~` (alone or before a slash of either kind) and `$NAME`, `${NAME}`. `PWD` is the
/// current directory. What is unset or empty leaves the reference as written.
[[nodiscard]] std::string expandPath(std::string_view text, const std::string& workingDir = {});

/// The expanded, non-empty pieces of a `:`-separated list.
[[nodiscard]] std::vector<std::string> splitPathList(std::string_view value,
                                                     const std::string& workingDir = {});

/// A program that was looked for, and which source it came from.
struct RunnerProgram {
    std::string path;        ///< a file that exists, or a bare name
    std::string_view source; ///< "MORQUILL_MQRUN_PATH", "executable_dir" or "fallback"
};

/// Looks for the runner `mqrun`: the entries of `MORQUILL_MQRUN_PATH` in order (one with "/" must be a
/// regular file, a bare name is looked up along `PATH`), then beside the running program, and at last the
/// bare name, which the system finds at start time.
[[nodiscard]] RunnerProgram locateRunner(const RuntimeConfig& config, const std::string& workingDir = {});
/// The path of `locateRunner`.
[[nodiscard]] std::string findRunnerProgram(const RuntimeConfig& config, const std::string& workingDir = {});

/// True when a runner path can be started as far as one can tell before: a path with "/" or "\" must be a
/// regular file, a bare name counts unless it is empty or holds ":".
[[nodiscard]] bool isRunnerAvailable(const std::string& path);

/// The directory of the running program; the current directory when that is not known.
[[nodiscard]] std::string executableDirectory();

} // namespace morquill::console
