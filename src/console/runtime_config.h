#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The configuration that the tool family shares: the environment, a flat `morquill.conf`, built-in defaults.
/// Nothing is cached, and no function writes a message.
///
/// `workingDir`, an absolute path, is the directory on whose behalf something is looked up: relative paths
/// and `PWD` are those of a program that runs there. An empty one means the current directory.
namespace morquill::console {

/// Key to value, as read from one file; keys are compared exactly.
using RuntimeConfig = std::map<std::string, std::string, std::less<>>;

/// The built-in default of a key; empty for a key without one.
[[nodiscard]] std::string_view defaultConfigValue(std::string_view key) noexcept;

/// The directories that are searched for a configuration file, in order, each once: ".", two below the home
/// directory when there is one, one beside the installed program, "/etc/morquill".
[[nodiscard]] std::vector<std::string> configSearchDirs();

/// Reads the first readable file of that name in the search directories; empty when there is none.
[[nodiscard]] RuntimeConfig loadConfig(const std::string& fileName, const std::string& workingDir = {});

/// Reads `key = value` lines; comments, blank lines and lines without `=` are skipped, and a later line wins.
/// Values are expanded; they may refer to a non-empty `configDir` as `$MORQUILL_CONFIG_DIR`,
/// `${MORQUILL_CONFIG_DIR}` or `%MORQUILL_CONFIG_DIR%`.
[[nodiscard]] RuntimeConfig parseConfigText(std::string_view text, const std::string& configDir,
                                            const std::string& workingDir = {});

/// The value of a key: a non-empty one of the environment unchanged, otherwise that of the file, even an
/// empty one, expanded, otherwise the default, expanded.
[[nodiscard]] std::string getConfigValue(const RuntimeConfig& config, const std::string& key,
                                         const std::string& workingDir = {});

/// The environment's value, or `fallback` when the variable is unset.
[[nodiscard]] std::string getEnvOrDefault(const std::string& name, std::string_view fallback);

/// Expands a leading `~`, alone or before a slash of either kind, to the home directory when that is known.
[[nodiscard]] std::string expandHome(std::string_view text);

/// Expands a leading `~` as `expandHome` does, `$NAME` and `${NAME}`. `PWD` is the
/// current directory. A reference to an unset or empty variable stays as written.
[[nodiscard]] std::string expandPath(std::string_view text, const std::string& workingDir = {});

/// The non-empty entries of a `:`-separated list, expanded.
[[nodiscard]] std::vector<std::string> splitPathList(std::string_view value,
                                                     const std::string& workingDir = {});

/// A program that was looked for, and where it was found.
struct RunnerProgram {
    std::string path;        ///< an existing file, or a bare name
    std::string_view source; ///< "MORQUILL_MQRUN_PATH", "executable_dir" or "fallback"
};

/// Looks for the runner `mqrun`: the entries of `MORQUILL_MQRUN_PATH` in order (one with "/" must be a
/// regular file, a bare name is looked up along `PATH`), then beside the running program, finally the bare
/// name, which the system looks up when it starts the runner.
[[nodiscard]] RunnerProgram locateRunner(const RuntimeConfig& config, const std::string& workingDir = {});
/// The path of `locateRunner`.
[[nodiscard]] std::string findRunnerProgram(const RuntimeConfig& config, const std::string& workingDir = {});

/// True when a runner path looks startable: a path with "/" or "\" must be a regular file; a bare name counts
/// unless it is empty or contains ":".
[[nodiscard]] bool isRunnerAvailable(const std::string& path);

/// The directory of the running program; the current directory when that is unknown.
[[nodiscard]] std::string executableDirectory();

} // namespace morquill::console
