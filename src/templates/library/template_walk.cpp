#include "templates/library/template_walk.h"

#include "console/messages.h"
#include "support/directory.h"
#include "support/fault.h"
#include "support/file.h"
#include "support/paths.h"
#include "taskdsl/base/shell_words.h"

#include <algorithm>
#include <exception>

namespace morquill::templates {

void walkRegularFiles(const std::string& directory, const std::function<void(const FoundFile&)>& visit) {
    const std::string start = joinPath(directory, "");
    walkTree(directory, WalkOrder::asListed, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::file || (kind == EntryKind::link && isRegularFile(path))) {
            const bool atStart = path.find('/', start.size()) == std::string::npos;
            visit({path, stemOf(path), std::string(extensionOf(path)),
                   atStart ? std::string() : baseName(parentPath(path))});
        }
        return true;
    });
}

void loadFiles(const std::string& directory, const std::vector<std::string_view>& extensions,
               std::string_view what, const std::function<void(const FoundFile&)>& load) {
    walkRegularFiles(directory, [&](const FoundFile& file) {
        if (std::find(extensions.begin(), extensions.end(), file.extension) == extensions.end()) {
            return;
        }
        try {
            load(file);
        } catch (const std::exception& error) {
            console::reportError("failed to load " + std::string(what) + " " + quotedPath(file.path) + ": " +
                                 faultText(error, {}));
        }
    });
}

std::string quotedPath(std::string_view path) {
    return taskdsl::quoteForcedShellWord(path);
}

} // namespace morquill::templates
