#include "system/copy_item.h"

#include "support/descriptor.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/signal_guard.h"
#include "system/tree_walk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
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

/// Copies all that is left of one file to another through memory.
bool copyThroughBuffer(int from, int to, const SignalGuard& ending) {
    constexpr std::size_t bufferSize = 1 << 18;
    const auto buffer = std::make_unique<char[]>(bufferSize);
    for (;;) {
        const ssize_t got = ::read(from, buffer.get(), bufferSize);
        if (got == 0) {
            return true;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0 || ending.noted() != 0 || !writeAll(to, {buffer.get(), static_cast<std::size_t>(got)})) {
            return false;
        }
    }
}

/// Lets the file system copy, or share, the bytes; what it cannot do goes through memory.
bool copyBytes(int from, int to, const SignalGuard& ending) {
    constexpr std::size_t chunk = 1U << 26; // a signal is not looked at before the next one
    for (;;) {
        if (ending.noted() != 0) {
            return false;
        }
        const ssize_t moved = ::copy_file_range(from, nullptr, to, nullptr, chunk, 0);
        if (moved == 0) {
            return copyThroughBuffer(from, to,
                                     ending); // the end, or a file whose size the system does not know
        }
        if (moved < 0 && errno != EINTR) {
            // Not a refusal but a fault that would only come again.
            if (errno == ENOSPC || errno == EIO || errno == EFBIG || errno == EDQUOT) {
                return false;
            }
            return copyThroughBuffer(from, to, ending);
        }
    }
}

/// Makes a copy of a regular file under a name that is free; what could not be copied in full is taken away.
bool makeFile(const std::string& source, const std::string& copy, const SignalGuard& ending) {
    const Descriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat info {};
    if (from.get() < 0 || ::fstat(from.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    Descriptor to(::open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 0777));
    if (to.get() < 0) {
        return false;
    }
    (void)::fchmod(to.get(), info.st_mode & 07777);
    const bool copied = copyBytes(from.get(), to.get(), ending);
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

/// Makes a copy of a directory under a name that is free. False when something in it could not be copied; the
/// rest is there all the same.
bool makeDirectory(const std::string& source, const std::string& copy, const SignalGuard& ending) {
    std::error_code error;
    if (!fs::create_directory(copy, error)) {
        return false;
    }
    bool complete = true;
    walkTree(source, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::unreadable || ending.noted() != 0) {
            complete = false;
            return false;
        }
        const auto inner = copy + path.substr(source.size());
        bool copied = false;
        switch (kind) {
        case EntryKind::directory:
            copied = fs::create_directory(inner, error);
            break;
        case EntryKind::file:
            copied = makeFile(path, inner, ending);
            break;
        case EntryKind::link:
            copied = makeLink(path, inner);
            break;
        default:
            break;
        }
        complete = complete && copied;
        return copied;
    });
    return complete;
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

/// What the names of this host's unfinished copies begin with: process numbers mean nothing on another one
/// that shares the disk.
std::string copyPrefix() {
    std::array<char, 65> host{}; // 64 bytes and the end
    (void)::gethostname(host.data(), host.size() - 1);
    return ".mqkit-" + std::string(host.data()) + "-";
}

/// A name beside `target` that is free: what is made under it can be renamed to `target`.
std::string nameBeside(const std::string& target) {
    const auto start =
        target.substr(0, target.rfind('/') + 1) + copyPrefix() + std::to_string(::getpid()) + "-";
    int number = 0;
    while (exists(start + std::to_string(number))) {
        number += 1;
    }
    return start + std::to_string(number);
}

/// Lets `copy` and `target`, which both exist, change places.
bool exchange(const std::string& copy, const std::string& target) {
    if (::renameat2(AT_FDCWD, copy.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // A file system that cannot do it in one step.
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

/// Puts a copy in the place of `target` and removes what stood there. False when that is not possible; the
/// copy is removed then.
bool putInPlace(const std::string& copy, const std::string& target) {
    if (::rename(copy.c_str(), target.c_str()) == 0) {
        return true;
    }
    // A directory that is not empty, or one for the other kind.
    const bool placed = exists(target) && exchange(copy, target);
    std::error_code error;
    fs::remove_all(copy, error); // the old result where they have changed places
    return placed && !error;
}

/// The process that a name behind `copyPrefix` tells: `<process>-<number>`; 0 for any other text.
pid_t ownerOf(std::string_view rest) noexcept {
    pid_t process = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), process);
    const std::string_view number = rest.substr(static_cast<std::size_t>(end - rest.data()));
    const bool isOwned = error == std::errc() && process > 0 && number.size() > 1 && number.front() == '-' &&
                         std::all_of(number.begin() + 1, number.end(), isDigit);
    return isOwned ? process : 0;
}

/// A path without the links on the way to it; the last component may be one.
std::string placeOf(const std::string& path) {
    return joinPath(normalisedPath(parentPath(path)), baseName(path));
}

/// True when the source would be copied to where it is, into itself, or over what holds it.
bool meetsItself(const std::string& source, const std::string& target) {
    const auto from = placeOf(source);
    const auto to = placeOf(target);
    return from == to || liesBelow(from, to) || liesBelow(to, from);
}

/// True when a regular file may take the target's place: a free one, or that of another file or a link.
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
    const SignalGuard ending; // goes last: nothing unfinished is left when a signal ends the program
    std::error_code error;
    if (!fs::exists(source, error) ||
        meetsItself(source, target)) { // a link that leads nowhere does not exist
        return false;
    }
    const auto kind = fs::symlink_status(source, error).type();
    const bool isDirectory = kind == fs::file_type::directory;
    if (kind == fs::file_type::regular && !takesFile(source, target)) {
        return false;
    }
    if (const auto parent = parentPath(target); !parent.empty()) {
        fs::create_directories(parent, error); // a failure shows when the copy is made
    }
    const auto copy = nameBeside(target);
    bool complete = false;
    switch (kind) {
    case fs::file_type::regular:
        complete = makeFile(source, copy, ending);
        break;
    case fs::file_type::symlink:
        complete = makeLink(source, copy);
        break;
    case fs::file_type::directory:
        complete = makeDirectory(source, copy, ending);
        break;
    default:
        break;
    }
    // A directory that is not whole is better than none, but never than the one before.
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
            std::error_code ignored; // what cannot be removed harms nothing
            fs::remove_all(joinPath(dir, name), ignored);
        }
    }
}

} // namespace morquill::system
