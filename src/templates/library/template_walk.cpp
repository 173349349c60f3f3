#include "templates/library/template_walk.h"

#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "taskdsl/base/shell_words.h"

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

std::string quotedPath(std::string_view path) {
    return taskdsl::quoteForcedShellWord(path);
}

} // namespace morquill::templates
