#include "console/runtime_config.h"

#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace morquill::console {

namespace fs = std::filesystem;

namespace {

struct ConfigDefault {
    std::string_view key;
    std::string_view value;
};

// One table for the whole tool family: most rows are for the sibling programs.
constexpr ConfigDefault configDefaults[] = {
    {"MORQUILL_SCRIPTS_PATH", "~/.morq/task/scripts"},
    {"MORQUILL_WFN_EXAMPLES_PATH", "~/.morq/task/multiwfn_templates"},
    {"MORQUILL_ORCA_TEMPLATES_PATH", ""},
    {"MORQUILL_EXTERNAL_SCRIPTS_PATH", "~/.morq/task/external"},
    {"MORQUILL_TASK_PATH", "."},
    {"MORQUILL_LOG_PATH", ""},
    {"MORQUILL_TEMPLATE_PATH", "~/.morq/task/mq_templates"},
    {"MORQUILL_MQLIB_PATH", "~/.morq/task/mqlib"},
    {"MORQUILL_OTHER_TEMPLATES_PATH", "~/.morq/task/other_templates"},
    {"MORQUILL_MORQWFN_PATH", ""},
    {"MORQUILL_ENVCONF_PATH", "~/.morq/task/envs"},
    {"MORQUILL_MQRUN_PATH", ""},
    {"MORQUILL_MQDB_PATH", ""},
    {"MQMETHOD_REFS_PATH", ""},
    {"MORQUILL_GNUPLOT", "gnuplot"},
    {"MQRUN_PROFILE_DIR", ""},
    {"MQRUN_DEFAULT_BACKEND", "auto"},
    {"MQRUN_SELECTION_MODE", "local_first"},
    {"MQRUN_ALLOW_AUTO_REMOTE", "false"},
    {"MQRUN_TASK_CONFIG_DIR", ""},
    {"MQRUN_QUEUE_DIR", "~/.morq/taskq"},
    {"MQRUN_TOTAL_CORES", ""},
    {"MQRUN_TOTAL_GPUS", ""},
    {"MQRUN_GPU_IDS", ""},
    {"MQRUN_FOLLOW_LOGS", "false"},
    {"MQRUN_DEBUG_BUNDLE_ON_FAIL", "true"},
    {"MQRUN_DEBUG_BUNDLE_DIR", "_mqrun_debug"},
    {"MQRUN_DEFAULT_CORES", "32"},
    {"MQRUN_DEFAULT_CORES_FOR_MAX_MEM", "64"},
    {"MQRUN_HIGH_MEMORY_THRESHOLD_MB", "3000"},
    {"MQRUN_PHYSICAL_CPU_NUM", ""},
};

/// The environment's value; nothing for a name that no variable can have.
std::optional<std::string> environmentValue(std::string_view name) {
    using namespace std::string_view_literals;
    if (name.empty() || name.find_first_of("=\0"sv) != std::string_view::npos) {
        return std::nullopt;
    }
    const char* value = std::getenv(std::string(name).c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string currentDirectory() {
    std::error_code error;
    const auto path = fs::current_path(error);
    return error ? std::string() : path.string();
}

/// A path as seen by a program that runs in `workingDir`; an empty one means the current directory.
std::string seenFrom(const std::string& workingDir, std::string path) {
    return workingDir.empty() || path.starts_with('/') ? std::move(path) : joinPath(workingDir, path);
}

/// The value that a reference expands to; empty when there is none.
std::string referenceValue(std::string_view name, const std::string& workingDir) {
    if (name != "PWD") {
        return environmentValue(name).value_or("");
    }
    return workingDir.empty() ? currentDirectory() : workingDir;
}

/// The length of the identifier at the start of `text`: a letter or "_", then letters, digits and "_".
std::size_t identifierLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && (isWordStart(text[length]) || (length > 0 && isDigit(text[length])))) {
        ++length;
    }
    return length;
}

/// A reference at the start of a text: its length including the "$", and its name.
struct Reference {
    std::size_t length = 0; // 0 when there is no reference
    std::string_view name;
};

/// Reads a reference, `$NAME` or `${NAME}`. The text begins with "$", and `braced` is its part up to its last
/// "}": a search for a brace there always finds one, which keeps a text full of "${" linear.
Reference readReference(std::string_view text, std::string_view braced) {
    if (text.substr(1).starts_with('{')) {
        const std::size_t closing = braced.empty() ? 0 : braced.find('}');
        return closing == 0 ? Reference{} : Reference{closing + 1, text.substr(2, closing - 2)};
    }
    const std::size_t length = identifierLength(text.substr(1));
    return length == 0 ? Reference{} : Reference{length + 1, text.substr(1, length)};
}

std::string expandReferences(std::string_view text, const std::string& workingDir) {
    const std::string_view braced = text.substr(0, text.rfind('}') + 1); // empty without a "}"
    std::string result;
    std::size_t i = 0;
    for (;;) {
        const std::size_t dollar = text.find('$', i);
        result += text.substr(i, dollar - i);
        if (dollar == std::string_view::npos) {
            return result;
        }
        const std::string_view rest = text.substr(dollar);
        const Reference reference = readReference(rest, braced.substr(std::min(dollar, braced.size())));
        const std::string value = referenceValue(reference.name, workingDir);
        if (reference.length == 0) {
            result += '$';
        } else if (value.empty()) {
            result += rest.substr(0, reference.length);
        } else {
            result += value;
        }
        i = dollar + std::max<std::size_t>(reference.length, 1);
    }
}

/// The first executable regular file of that name along
/// `PATH`; an empty entry there is the current directory.
std::optional<std::string> searchPath(const std::string& name, const std::string& workingDir) {
    const auto directories = environmentValue("PATH");
    if (!directories) {
        return std::nullopt;
    }
    for (const auto& entry : splitOn(*directories, ':')) {
        std::string path = seenFrom(workingDir, entry.empty() ? "." : entry);
        path.append("/").append(name);
        if (isRegularFile(path) && ::access(path.c_str(), X_OK) == 0) {
            return path;
        }
    }
    return std::nullopt;
}

/// The file that an entry of `MORQUILL_MQRUN_PATH` names; nothing when there is none.
std::optional<std::string> resolveRunnerEntry(const std::string& entry, const std::string& workingDir) {
    if (entry.find('/') == std::string::npos) {
        return searchPath(entry, workingDir);
    }
    std::string path = seenFrom(workingDir, entry);
    return isRegularFile(path) ? std::optional(std::move(path)) : std::nullopt;
}

} // namespace

std::string_view defaultConfigValue(std::string_view key) noexcept {
    for (const auto& row : configDefaults) {
        if (row.key == key) {
            return row.value;
        }
    }
    return {};
}

std::vector<std::string> configSearchDirs() {
    std::vector<std::string> directories{"."};
    const auto add = [&](std::string directory) {
        if (std::find(directories.begin(), directories.end(), directory) == directories.end()) {
            directories.push_back(std::move(directory));
        }
    };
    if (const std::string home = getEnvOrDefault("HOME", ""); !home.empty()) {
        add(home + "/.morq/task");
        add(home + "/.morquill");
    }
    add(fs::path(executableDirectory() + "/../share/morquill/conf").lexically_normal().string());
    add("/etc/morquill");
    return directories;
}

RuntimeConfig loadConfig(const std::string& fileName, const std::string& workingDir) {
    for (const auto& directory : configSearchDirs()) {
        std::string path = directory;
        path.append("/").append(fileName);
        if (const auto text = readTextFile(seenFrom(workingDir, std::move(path)))) {
            return parseConfigText(skipByteOrderMark(*text), directory, workingDir);
        }
    }
    return {};
}

RuntimeConfig parseConfigText(std::string_view text, const std::string& configDir,
                              const std::string& workingDir) {
    static constexpr std::array<std::string_view, 3> directoryForms{
        "${MORQUILL_CONFIG_DIR}", "$MORQUILL_CONFIG_DIR", "%MORQUILL_CONFIG_DIR%"};
    RuntimeConfig config;
    for (const auto rawLine : splitLines(text)) {
        const auto line = trim(rawLine);
        const auto equals = line.find('=');
        if (line.starts_with('#') || equals == std::string_view::npos) {
            continue;
        }
        std::string value(trim(line.substr(equals + 1)));
        if (!configDir.empty()) {
            for (const auto form : directoryForms) {
                value = replaceAll(value, form, configDir);
            }
        }
        config.insert_or_assign(std::string(trim(line.substr(0, equals))), expandPath(value, workingDir));
    }
    return config;
}

std::string getConfigValue(const RuntimeConfig& config, const std::string& key,
                           const std::string& workingDir) {
    if (std::string value = getEnvOrDefault(key, ""); !value.empty()) {
        return value;
    }
    const auto found = config.find(key);
    return expandPath(found != config.end() ? std::string_view(found->second) : defaultConfigValue(key),
                      workingDir);
}

std::string getEnvOrDefault(const std::string& name, std::string_view fallback) {
    return environmentValue(name).value_or(std::string(fallback));
}

std::string expandHome(std::string_view text) {
    if (text == "~" || text.starts_with("~/") || text.starts_with("~\\")) {
        if (const std::string home = getEnvOrDefault("HOME", ""); !home.empty()) {
            return home + std::string(text.substr(1));
        }
    }
    return std::string(text);
}

std::string expandPath(std::string_view text, const std::string& workingDir) {
    return expandReferences(expandHome(text), workingDir);
}

std::vector<std::string> splitPathList(std::string_view value, const std::string& workingDir) {
    std::vector<std::string> paths;
    for (const auto& piece : splitTrimmed(value, ':')) {
        paths.push_back(expandPath(piece, workingDir)); // never empty: a reference without a value stays
    }
    return paths;
}

RunnerProgram locateRunner(const RuntimeConfig& config, const std::string& workingDir) {
    const auto paths = getConfigValue(config, "MORQUILL_MQRUN_PATH", workingDir);
    for (const auto& entry : splitPathList(paths, workingDir)) {
        if (auto path = resolveRunnerEntry(expandPath(entry, workingDir), workingDir)) {
            return {std::move(*path), "MORQUILL_MQRUN_PATH"};
        }
    }
    if (std::string beside = executableDirectory() + "/mqrun"; isRegularFile(beside)) {
        return {std::move(beside), "executable_dir"};
    }
    return {"mqrun", "fallback"};
}

std::string findRunnerProgram(const RuntimeConfig& config, const std::string& workingDir) {
    return locateRunner(config, workingDir).path;
}

bool isRunnerAvailable(const std::string& path) {
    if (path.find_first_of("/\\") != std::string::npos) {
        return isRegularFile(path);
    }
    return !path.empty() && path.find(':') == std::string::npos;
}

std::string executableDirectory() {
    std::array<char, 4095> link{};
    const auto length = ::readlink("/proc/self/exe", link.data(), link.size());
    if (length <= 0) {
        return currentDirectory();
    }
    const std::string_view path(link.data(), static_cast<std::size_t>(length));
    const auto slash = path.rfind('/');
    return std::string(path.substr(0, slash == 0 ? 1 : slash)); // a program in "/" itself keeps the slash
}

} // namespace morquill::console
