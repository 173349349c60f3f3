#include "support/directory.h"

#include "support/fault.h"
#include "support/paths.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>

namespace morquill {

namespace {

EntryKind kindOfMode(mode_t mode) noexcept {
    return S_ISREG(mode)   ? EntryKind::file
           : S_ISDIR(mode) ? EntryKind::directory
           : S_ISLNK(mode) ? EntryKind::link
                           : EntryKind::other;
}

EntryKind kindAt(int dir, const char* name) noexcept {
    struct stat info {};
    return ::fstatat(dir, name, &info, AT_SYMLINK_NOFOLLOW) == 0 ? kindOfMode(info.st_mode)
                                                                 : EntryKind::other;
}

EntryKind kindOfEntry(DIR* dir, const dirent& entry) noexcept {
    return entry.d_type == DT_UNKNOWN ? kindAt(::dirfd(dir), entry.d_name)
                                      : kindOfMode(static_cast<mode_t>(DTTOIF(entry.d_type)));
}

struct CloseDirectory {
    void operator()(DIR* dir) const noexcept { ::closedir(dir); }
};

/// Calls `take` with every entry, in the order of the file system, until it returns false. Returns 0, or the
/// error number when the directory cannot be read in full.
template <class Take>
int eachEntry(const std::string& dir, Take take) {
    const std::unique_ptr<DIR, CloseDirectory> open(::opendir(dir.c_str()));
    if (!open) {
        return errno;
    }
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(open.get());
        if (entry == nullptr) {
            return errno;
        }
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && !take(open.get(), *entry)) {
            return 0;
        }
    }
}

/// The entries in the order of the file system; nothing, with `errno`, when they cannot be read.
std::optional<std::vector<DirectoryEntry>> readAsListed(const std::string& dir) {
    std::vector<DirectoryEntry> entries;
    const int error = eachEntry(dir, [&](DIR* open, const dirent& entry) {
        entries.push_back({entry.d_name, kindOfEntry(open, entry)});
        return true;
    });
    if (error != 0) {
        errno = error;
        return std::nullopt;
    }
    return entries;
}

/// A directory that is there and cannot be read must not pass for an empty one.
void requireRead(int error, const std::string& dir) {
    if (error != 0 && !isAbsence(error) && error != ENAMETOOLONG) {
        throw std::system_error(error, std::system_category(), "could not read directory " + dir);
    }
}

/// The names for which `accept` returns true, in ascending byte order.
template <class Accept>
std::vector<std::string> sortedNames(const std::string& dir, Accept accept) {
    std::vector<std::string> names;
    const int error = eachEntry(dir, [&](DIR* /*open*/, const dirent& entry) {
        if (accept(entry.d_name)) {
            names.emplace_back(entry.d_name);
        }
        return true;
    });
    requireRead(error, dir);
    std::sort(names.begin(), names.end());
    return names;
}

/// A path that a walk has yet to reach.
struct Waiting {
    std::string path;
    EntryKind kind;
    bool isVisited; ///< only its entries are left
};

} // namespace

EntryKind kindOf(const std::string& path) noexcept {
    return kindAt(AT_FDCWD, path.c_str());
}

std::optional<std::vector<DirectoryEntry>> readDirectory(const std::string& dir) {
    auto entries = readAsListed(dir);
    if (entries) {
        std::sort(entries->begin(), entries->end(),
                  [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.name < b.name; });
    }
    return entries;
}

std::vector<std::string> listDirectoryEntries(const std::string& dir) {
    return sortedNames(dir, [](const char* /*name*/) { return true; });
}

std::vector<std::string> listDirectoryEntries(const std::string& dir, const std::string& pattern) {
    return sortedNames(dir,
                       [&](const char* name) { return ::fnmatch(pattern.c_str(), name, FNM_PATHNAME) == 0; });
}

bool anyDirectoryEntry(const std::string& dir, const std::function<bool(const std::string&)>& accept) {
    bool found = false;
    const int error = eachEntry(dir, [&](DIR* /*open*/, const dirent& entry) {
        found = accept(entry.d_name);
        return !found;
    });
    requireRead(error, dir);
    return found;
}

void walkTree(const std::string& top, WalkOrder order,
              const std::function<bool(const std::string& path, EntryKind kind)>& visit) {
    const auto isEntered = [&](const std::string& path, EntryKind kind) {
        return visit(path, kind) && kind == EntryKind::directory;
    };
    std::vector<Waiting> waiting{{.path = top, .kind = EntryKind::directory, .isVisited = true}};
    while (!waiting.empty()) {
        const Waiting next = std::move(waiting.back());
        waiting.pop_back();
        if (!next.isVisited && !isEntered(next.path, next.kind)) {
            continue;
        }
        const auto entries = order == WalkOrder::byName ? readDirectory(next.path) : readAsListed(next.path);
        if (!entries) {
            (void)visit(next.path, EntryKind::unreadable);
            continue;
        }
        const auto first = static_cast<std::ptrdiff_t>(waiting.size());
        for (const auto& entry : *entries) {
            auto path = joinPath(next.path, entry.name);
            // By name, an entry comes before whatever lies below its siblings, so it is visited at once.
            const bool isVisited = order == WalkOrder::byName;
            if (!isVisited || isEntered(path, entry.kind)) {
                waiting.push_back({std::move(path), entry.kind, isVisited});
            }
        }
        std::reverse(waiting.begin() + first, waiting.end());
    }
}

} // namespace morquill
