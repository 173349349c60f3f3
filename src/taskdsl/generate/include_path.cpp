#include "taskdsl/generate/include_path.h"

#include "support/paths.h"

#include <filesystem>

namespace morquill::taskdsl {

std::string resolveIncludePath(std::string_view name, const std::string& baseFile,
                               const LibraryFileFinder& findLibraryFile) {
    if (name.empty()) {
        return {};
    }
    std::string target(name);
    if (name.size() >= 2 && name.front() == '<' && name.back() == '>') {
        target = name.substr(1, name.size() - 2);
        if (findLibraryFile) {
            target = findLibraryFile(target);
        }
    }
    return absolutePath((std::filesystem::path(baseFile).parent_path() / target).string());
}

} // namespace morquill::taskdsl
