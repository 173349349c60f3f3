#include "system/tree_walk.h"

#include "support/paths.h"

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace morquill::system {

namespace {

EntryKind kindOfMode(mode_t mode) noexcept {
    return S_ISREG(mode)   ? EntryKind::file
           : S_ISDIR(mode) ? EntryKind::directory
           : S_ISLNK(mode) ? EntryKind::link
                           : EntryKind::other;
}

EntryKind kindOf(DIR* dir, const dirent& entry) noexcept {
    if (entry.d_type != DT_UNKNOWN) {
        return kindOfMode(static_cast<mode_t>(DTTOIF(entry.d_type)));
    }
    struct stat info {};
    return ::fstatat(::dirfd(dir), entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 ? kindOfMode(info.st_mode)
                                                                                  : EntryKind::other;
}

struct CloseDirectory {
    void operator()(DIR* dir) const noexcept { ::closedir(dir); }
};

} // namespace

bool readDirectory(const std::string& dir, std::vector<DirectoryEntry>& entries) {
    entries.clear();
    const std::unique_ptr<DIR, CloseDirectory> open(::opendir(dir.c_str()));
    if (!open) {
        return false;
    }
    while (const dirent* entry = ::readdir(open.get())) {
        std::string name = entry->d_name;
        if (name != "." && name != "..") {
            entries.push_back({std::move(name), kindOf(open.get(), *entry)});
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.name < b.name; });
    return true;
}

void walkTree(const std::string& top,
              const std::function<bool(const std::string& path, EntryKind kind)>& visit) {
    std::vector<std::string> waiting{top};
    std::vector<DirectoryEntry> entries;
    while (!waiting.empty()) {
        const std::string dir = std::move(waiting.back());
        waiting.pop_back();
        if (!readDirectory(dir, entries)) {
            (void)visit(dir, EntryKind::unreadable);
            continue;
        }
        const auto behindSiblings = static_cast<std::ptrdiff_t>(waiting.size());
        for (const auto& entry : entries) {
            auto path = joinPath(dir, entry.name);
            if (visit(path, entry.kind) && entry.kind == EntryKind::directory) {
                waiting.push_back(std::move(path));
            }
        }
        std::reverse(waiting.begin() + behindSiblings, waiting.end());
    }
}

} // namespace morquill::system
