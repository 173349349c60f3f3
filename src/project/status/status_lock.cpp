#include "project/status/status_lock.h"

#include "console/messages.h"
#include "support/paths.h"
#include "system/file_lock.h"

#include <utility>

namespace morquill::project {

std::optional<StatusLocks> lockStatusFiles(TargetKind kind, const std::string& directory,
                                           const std::string& file) {
    using system::LockKind;
    // The file of a case is mostly a link to the template. A directory cannot be locked everywhere, and a
    // task file of its own leads to no template: together they meet a project as long as one of them can.
    const bool isCase = kind == TargetKind::Case;
    const auto common = isCase ? LockKind::shared : LockKind::exclusive;
    std::vector<std::pair<std::string, LockKind>> wanted{
        {file, common},
        {isCase ? parentPath(directory) : directory, common},
    };
    if (isCase) {
        wanted.emplace_back(directory, LockKind::exclusive);
    }
    StatusLocks locks;
    for (const auto& [path, lockKind] : wanted) {
        auto lock = system::tryLock(path, lockKind);
        if (!lock) {
            console::reportError("another mqkit is changing the status files here: " + directory);
            return std::nullopt;
        }
        locks.push_back(std::move(*lock));
    }
    return locks;
}

} // namespace morquill::project
