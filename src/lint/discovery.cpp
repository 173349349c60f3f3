#include "lint/discovery.h"

#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace morquill::lint {

namespace {

bool hasTaskExtension(std::string_view path) {
    return equalsNoCase(extensionOf(path), ".mq");
}

/// Adds the task files below `root`. The walk continues after a directory that cannot be read.
void addTree(const std::string& root, std::vector<std::string>& files) {
    walkTree(root, WalkOrder::byName, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::file && hasTaskExtension(path)) {
            files.push_back(path);
        }
        return true;
    });
}

} // namespace

std::vector<std::string> findTaskFiles(const std::vector<std::string>& paths) {
    std::vector<std::string> files;
    for (const auto& given : paths) {
        std::string path = normalisedPath(given);
        if (lookUpDirectory(path)) {
            addTree(path, files);
        } else if (hasTaskExtension(path) && lookUpRegularFile(path)) {
            files.push_back(std::move(path));
        }
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

} // namespace morquill::lint
