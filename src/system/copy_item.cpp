#include "system/copy_item.h"

#include "support/descriptor.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/signal_guard.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill::system {

namespace fs = std::filesystem;

namespace {

/// Copies a regular file to an unused name; a copy that could not be finished is removed.
bool makeFile(const std::string& source, const std::string& copy, const SignalGuard& ending) {
    const Descriptor from = openFile(source, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    struct stat info {};
    if (!from.isOpen() || ::fstat(from.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    Descriptor to = openFile(copy, O_WRONLY | O_CREAT | O_EXCL, info.st_mode & 0777);
    if (!to.isOpen()) {
        return false;
    }
    (void)::fchmod(to.get(), info.st_mode & 07777);
    const bool copied = copyToEnd(from.get(), to.get(), [&] { return ending.noted() != 0; });
    if (!to.close() || !copied) {
        (void)::unlink(copy.c_str());
        return false;
    }
    return true;
}

bool makeLink(const std::string& source, const std::string& copy) {
    std::error_code error;
    fs::copy_symlink(source, copy, error);
    return !error;
}

/// Copies a file or a link to an unused name; false for anything else.
bool makeLeaf(EntryKind kind, const std::string& source, const std::string& copy, const SignalGuard& ending) {
    return kind == EntryKind::file ? makeFile(source, copy, ending)
                                   : kind == EntryKind::link && makeLink(source, copy);
}

/// Copies a directory to an unused name. Returns false when something
/// in it could not be copied; the rest is copied all the same.
bool makeDirectory(const std::string& source, const std::string& copy, const SignalGuard& ending) {
    std::error_code error;
    if (!fs::create_directory(copy, error)) {
        return false;
    }
    bool complete = true;
    walkTree(source, WalkOrder::byName, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::unreadable || ending.noted() != 0) {
            complete = false;
            return false;
        }
        const auto inner = copy + path.substr(source.size());
        const bool copied = kind == EntryKind::directory ? fs::create_directory(inner, error)
                                                         : makeLeaf(kind, path, inner, ending);
        complete = complete && copied;
        return copied;
    });
    return complete;
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

/// The start of the names of this host's unfinished copies. It names the host because process numbers mean
/// nothing on another host that shares the disk.
std::string copyPrefix() {
    std::array<char, 65> host{}; // 64 bytes and the terminator
    (void)::gethostname(host.data(), host.size() - 1);
    return ".mqkit-" + std::string(host.data()) + "-";
}

/// An unused name beside `target`, where a copy can be made and then renamed to `target`.
std::string nameBeside(const std::string& target) {
    const auto start =
        target.substr(0, target.rfind('/') + 1) + copyPrefix() + std::to_string(::getpid()) + "-";
    int number = 0;
    while (exists(start + std::to_string(number))) {
        number += 1;
    }
    return start + std::to_string(number);
}

/// Exchanges `copy` and `target`, which both exist.
bool exchange(const std::string& copy, const std::string& target) {
    if (::renameat2(AT_FDCWD, copy.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // The file system cannot exchange them in one step.
    const auto aside = nameBeside(target);
    if (::rename(target.c_str(), aside.c_str()) != 0) {
        return false;
    }
    if (::rename(copy.c_str(), target.c_str()) != 0) {
        (void)::rename(aside.c_str(), target.c_str());
        return false;
    }
    return ::rename(aside.c_str(), copy.c_str()) == 0;
}

/// Replaces `target` with a copy and removes the old target. Returns
/// false when that is not possible; the copy is removed then.
bool putInPlace(const std::string& copy, const std::string& target) {
    if (::rename(copy.c_str(), target.c_str()) == 0) {
        return true;
    }
    // One of them is a directory that `rename` cannot replace or be replaced by.
    const bool placed = exists(target) && exchange(copy, target);
    std::error_code error;
    fs::remove_all(copy, error); // the old target if they were exchanged, else the copy
    return placed && !error;
}

/// The process named after `copyPrefix`, as in `<process>-<number>`; 0 for any other text.
pid_t ownerOf(std::string_view rest) noexcept {
    pid_t process = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), process);
    const std::string_view number = rest.substr(static_cast<std::size_t>(end - rest.data()));
    const bool isOwned = error == std::errc() && process > 0 && number.size() > 1 && number.front() == '-' &&
                         std::all_of(number.begin() + 1, number.end(), isDigit);
    return isOwned ? process : 0;
}

/// A path with the links on the way to it resolved; the last component may still be one.
std::string placeOf(const std::string& path) {
    return joinPath(normalisedPath(parentPath(path)), baseName(path));
}

/// True when the source would be copied onto itself, into itself, or over a directory that contains it.
bool meetsItself(const std::string& source, const std::string& target) {
    const auto from = placeOf(source);
    const auto to = placeOf(target);
    return from == to || liesBelow(from, to) || liesBelow(to, from);
}

/// True when a regular file may be put at the target: nothing, another file or a link is there.
bool takesFile(const std::string& source, const std::string& target) {
    struct stat standing {};
    struct stat info {};
    if (::lstat(target.c_str(), &standing) != 0 || S_ISLNK(standing.st_mode)) {
        return true;
    }
    return S_ISREG(standing.st_mode) && ::lstat(source.c_str(), &info) == 0 &&
           (standing.st_dev != info.st_dev || standing.st_ino != info.st_ino);
}

} // namespace

bool copyItem(const std::string& source, const std::string& target) {
    const SignalGuard ending; // destroyed last: a signal ends the program only after the clean-up
    std::error_code error;
    // A link that leads nowhere does not count as existing.
    if (!fs::exists(source, error) || meetsItself(source, target)) {
        return false;
    }
    const auto kind = kindOf(source);
    const bool isDirectory = kind == EntryKind::directory;
    if (kind == EntryKind::file && !takesFile(source, target)) {
        return false;
    }
    if (const auto parent = parentPath(target); !parent.empty()) {
        fs::create_directories(parent, error); // a failure shows in the copy
    }
    const auto copy = nameBeside(target);
    const bool complete =
        isDirectory ? makeDirectory(source, copy, ending) : makeLeaf(kind, source, copy, ending);
    // A partial directory is better than none, but never better than the old one.
    if (complete || (isDirectory && ending.noted() == 0 && exists(copy) && !exists(target))) {
        return putInPlace(copy, target) && complete;
    }
    fs::remove_all(copy, error);
    return false;
}

void removeStaleCopies(const std::string& dir) {
    const auto prefix = copyPrefix();
    for (const auto& name : listDirectoryEntries(dir)) {
        const pid_t owner =
            name.starts_with(prefix) ? ownerOf(std::string_view(name).substr(prefix.size())) : 0;
        if (owner > 0 && ::kill(owner, 0) != 0 && errno == ESRCH) {
            std::error_code ignored; // leaving one behind does no harm
            fs::remove_all(joinPath(dir, name), ignored);
        }
    }
}

} // namespace morquill::system
