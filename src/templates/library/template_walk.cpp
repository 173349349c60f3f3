#include "templates/library/template_walk.h"

#include "taskdsl/base/shell_words.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace morquill::templates {

namespace fs = std::filesystem;

void walkRegularFiles(const std::string& directory, const std::function<void(const FoundFile&)>& visit) {
    // One open iterator per level: a directory that cannot be opened ends its own level only.
    std::error_code error;
    std::vector<fs::directory_iterator> levels{fs::directory_iterator(directory, error)};
    while (!levels.empty()) {
        if (levels.back() == fs::directory_iterator()) {
            levels.pop_back();
            continue;
        }
        const fs::directory_entry entry = *levels.back();
        const bool atRoot = levels.size() == 1;
        levels.back().increment(error);
        if (entry.symlink_status(error).type() == fs::file_type::directory) {
            levels.emplace_back(entry.path(), error);
        } else if (entry.is_regular_file(error)) {
            const auto& path = entry.path();
            visit({path.string(), path.stem().string(), path.extension().string(),
                   atRoot ? std::string() : path.parent_path().filename().string()});
        }
    }
}

std::string quotedPath(std::string_view path) {
    return taskdsl::quoteForcedShellWord(path);
}

} // namespace morquill::templates
