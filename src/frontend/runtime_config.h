#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The configuration that the tool family shares: the environment, a flat `morquill.conf`, built-in defaults.
/// Nothing is cached; nothing here reports anything.
namespace morquill::frontend {

/// Key to value, as read from one file; keys are compared exactly.
using RuntimeConfig = std::map<std::string, std::string, std::less<>>;

/// The built-in default of a key; empty for a key that has none.
[[nodiscard]] std::string_view defaultConfigValue(std::string_view key) noexcept;

/// The directories that are searched for a configuration file, in order, each once.
[[nodiscard]] std::vector<std::string> configSearchDirs();

/// The first readable file of that name in the search directories, parsed; empty when there is none.
[[nodiscard]] RuntimeConfig loadConfig(const std::string& fileName);

/// Reads `key = value` lines; comments, blank lines and lines without `=` are skipped, a later line wins.
[[nodiscard]] RuntimeConfig parseConfigText(std::string_view text, const std::string& configDir);

/// The environment's non-empty value, else the file's value expanded, else the default expanded.
[[nodiscard]] std::string getConfigValue(const RuntimeConfig& config, const std::string& key);

/// The environment's value, or `fallback` when the variable is unset.
[[nodiscard]] std::string getEnvOrDefault(const std::string& name, std::string_view fallback);

/// Expands a leading `~` and `$NAME`, `${NAME}`; an unset or empty name leaves the reference as written.
[[nodiscard]] std::string expandPath(std::string_view text);

/// The expanded, non-empty pieces of a `:`-separated list.
[[nodiscard]] std::vector<std::string> splitPathList(std::string_view value);

/// The path of the runner `mqrun`, or the bare name when it is not found.
[[nodiscard]] std::string findRunnerProgram(const RuntimeConfig& config);

/// The directory of the running program; the current directory when that is not known.
[[nodiscard]] std::string executableDirectory();

} // namespace morquill::frontend
