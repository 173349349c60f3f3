#include "console/library_file.h"

#include "console/runtime_config.h"
#include "support/file.h"
#include "support/paths.h"

#include <filesystem>
#include <string_view>

namespace morquill::console {

namespace fs = std::filesystem;

namespace {

/// Expands a leading "~", alone or before a slash, to the home directory when that is known.
std::string expandHome(std::string_view name) {
    if (name == "~" || name.starts_with("~/") || name.starts_with("~\\")) {
        if (const auto home = getEnvOrDefault("HOME", ""); !home.empty()) {
            return home + std::string(name.substr(1));
        }
    }
    return std::string(name);
}

} // namespace

std::string findLibraryFile(const std::string& name) {
    std::string target = expandHome(name);
    if (fs::path(target).is_absolute()) {
        return target;
    }
    const auto config = loadConfig("morquill.conf");
    for (const auto& directory : splitPathList(getConfigValue(config, "MORQUILL_MQLIB_PATH"))) {
        auto candidate = absolutePath((fs::path(directory) / target).string());
        if (isRegularFile(candidate)) {
            return candidate;
        }
    }
    return target;
}

} // namespace morquill::console
