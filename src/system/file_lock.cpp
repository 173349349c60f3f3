#include "system/file_lock.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>

namespace morquill::system {

namespace {

/// Open for writing where that is allowed: NFS refuses an exclusive lock to a reader.
Descriptor openForLock(const std::string& path) {
    constexpr int flags = O_NONBLOCK | O_NOCTTY;
    auto file = openFile(path, O_RDWR | flags);
    return file.isOpen() ? std::move(file) : openFile(path, O_RDONLY | flags);
}

} // namespace

std::optional<Descriptor> tryLock(const std::string& path, LockKind kind) {
    auto file = openForLock(path);
    if (!file.isOpen()) {
        return Descriptor();
    }
    const int operation = (kind == LockKind::shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    int locked = ::flock(file.get(), operation);
    while (locked != 0 && errno == EINTR) {
        locked = ::flock(file.get(), operation);
    }
    if (locked == 0) {
        return file;
    }
    if (errno == EWOULDBLOCK) {
        return std::nullopt;
    }
    return Descriptor();
}

} // namespace morquill::system
