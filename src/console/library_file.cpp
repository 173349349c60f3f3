#include "console/library_file.h"

#include "console/runtime_config.h"
#include "support/file.h"
#include "support/paths.h"

#include <filesystem>

namespace morquill::console {

namespace fs = std::filesystem;

std::string findLibraryFile(const std::string& name) {
    std::string target = expandHome(name);
    if (fs::path(target).is_absolute()) {
        return target;
    }
    const auto config = loadConfig("morquill.conf");
    for (const auto& directory : splitPathList(getConfigValue(config, "MORQUILL_MQLIB_PATH"))) {
        auto candidate = absolutePath((fs::path(directory) / target).string());
        if (lookUpRegularFile(candidate)) {
            return candidate;
        }
    }
    return target;
}

} // namespace morquill::console
