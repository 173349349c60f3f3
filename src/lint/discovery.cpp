#include "lint/discovery.h"

#include "support/file.h"
#include "support/text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace morquill::lint {

namespace fs = std::filesystem;

namespace {

bool hasTaskExtension(const fs::path& path) {
    return equalsNoCase(path.extension().native(), ".mq");
}

/// Adds the task files below `root`. A directory that cannot be read ends neither its siblings nor the walk,
/// as it would with the standard library's recursive iterator.
void addTree(const std::string& root, std::vector<std::string>& files) {
    std::vector<std::string> open{root};
    while (!open.empty()) {
        const std::string directory = std::move(open.back());
        open.pop_back();
        std::error_code error;
        fs::directory_iterator entry(directory, error);
        for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code gone; // an entry that vanished is none of the three
            if (entry->is_symlink(gone)) {
                continue;
            }
            if (entry->is_directory(gone)) {
                open.push_back(entry->path().native());
            } else if (hasTaskExtension(entry->path()) && entry->is_regular_file(gone)) {
                files.push_back(entry->path().native());
            }
        }
    }
}

} // namespace

std::vector<std::string> findTaskFiles(const std::vector<std::string>& paths) {
    std::vector<std::string> files;
    for (const auto& given : paths) {
        std::string path = normalisedPath(given);
        if (isDirectory(path)) {
            addTree(path, files);
        } else if (hasTaskExtension(path) && isRegularFile(path)) {
            files.push_back(std::move(path));
        }
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

} // namespace morquill::lint
