#include "taskdsl/generate/include_path.h"

#include "console/runtime_config.h"
#include "support/file.h"
#include "support/paths.h"

#include <filesystem>

namespace morquill::taskdsl {

namespace fs = std::filesystem;

namespace {

/// A leading "~" alone, or before a slash, is the home directory when one is known.
std::string expandHome(std::string_view name) {
    if (name == "~" || name.starts_with("~/") || name.starts_with("~\\")) {
        if (const auto home = console::getEnvOrDefault("HOME", ""); !home.empty()) {
            return home + std::string(name.substr(1));
        }
    }
    return std::string(name);
}

/// The file of that name in the library directories; empty when none has it.
std::string findInLibraryPath(const std::string& name) {
    const auto config = console::loadConfig("morquill.conf");
    for (const auto& directory :
         console::splitPathList(console::getConfigValue(config, "MORQUILL_MQLIB_PATH"))) {
        auto candidate = absolutePath((fs::path(directory) / name).string());
        if (isRegularFile(candidate)) {
            return candidate;
        }
    }
    return {};
}

} // namespace

std::string resolveIncludePath(std::string_view name, const std::string& baseFile) {
    if (name.empty()) {
        return {};
    }
    std::string target(name);
    if (name.size() >= 2 && name.front() == '<' && name.back() == '>') {
        target = expandHome(name.substr(1, name.size() - 2));
        if (fs::path(target).is_relative()) {
            if (auto found = findInLibraryPath(target); !found.empty()) {
                return found;
            }
        }
    }
    return absolutePath((fs::path(baseFile).parent_path() / target).string());
}

} // namespace morquill::taskdsl
