#include "system/copy_item.h"

#include "support/file.h"
#include "support/paths.h"
#include "system/tree_walk.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace morquill::system {

namespace fs = std::filesystem;

namespace {

class Descriptor {
  public:
    explicit Descriptor(int fd) noexcept : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { (void)close(); }
    [[nodiscard]] int get() const noexcept { return fd_; }
    bool close() noexcept { return fd_ < 0 || ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t put = ::write(fd, data, size);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            return false;
        }
        data += put;
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

/// Copies all that is left of one file to another through memory.
bool copyThroughBuffer(int from, int to) {
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
        if (got < 0 || !writeAll(to, buffer.get(), static_cast<std::size_t>(got))) {
            return false;
        }
    }
}

/// Lets the file system copy, or share, the bytes; what it cannot do goes through memory.
bool copyBytes(int from, int to) {
    constexpr std::size_t chunk = 1U << 30;
    for (;;) {
        const ssize_t moved = ::copy_file_range(from, nullptr, to, nullptr, chunk, 0);
        if (moved == 0) {
            return copyThroughBuffer(from, to); // the end, or a file whose size the system does not know
        }
        if (moved < 0 && errno != EINTR) {
            // Not a refusal but a fault that would only come again.
            if (errno == ENOSPC || errno == EIO || errno == EFBIG || errno == EDQUOT) {
                return false;
            }
            return copyThroughBuffer(from, to);
        }
    }
}

bool copyFile(const std::string& source, const std::string& target) {
    const Descriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat info {};
    if (from.get() < 0 || ::fstat(from.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    std::error_code error;
    if (const auto parent = parentPath(target); !parent.empty()) {
        fs::create_directories(parent, error); // a failure shows when the target is opened
    }
    struct stat standing {};
    if (::lstat(target.c_str(), &standing) == 0) {
        if (S_ISLNK(standing.st_mode)) {
            // Writing through it would change the file it leads to.
            fs::remove(target, error);
        } else if (!S_ISREG(standing.st_mode) ||
                   (standing.st_dev == info.st_dev && standing.st_ino == info.st_ino)) {
            return false;
        }
    }
    Descriptor to(
        ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, info.st_mode & 0777));
    if (to.get() < 0) {
        return false;
    }
    (void)::fchmod(to.get(), info.st_mode & 07777);
    const bool copied = copyBytes(from.get(), to.get());
    if (!to.close() || !copied) {
        fs::remove(target, error);
        return false;
    }
    return true;
}

bool copyLink(const std::string& source, const std::string& target) {
    std::error_code error;
    fs::remove_all(target, error);
    if (!error) {
        fs::copy_symlink(source, target, error);
    }
    return !error;
}

bool copyDirectory(const std::string& source, const std::string& target) {
    std::error_code error;
    fs::remove_all(target, error);
    if (error || (fs::create_directories(target, error), error)) {
        return false;
    }
    bool complete = true;
    walkTree(source, [&](const std::string& path, EntryKind kind) {
        if (kind == EntryKind::unreadable) {
            complete = false;
            return false;
        }
        const auto copy = target + path.substr(source.size());
        bool copied = false;
        switch (kind) {
        case EntryKind::directory:
            copied = fs::create_directory(copy, error);
            break;
        case EntryKind::file:
            copied = copyFile(path, copy);
            break;
        case EntryKind::link:
            copied = copyLink(path, copy);
            break;
        default:
            break;
        }
        complete = complete && copied;
        return copied;
    });
    return complete;
}

} // namespace

bool copyItem(const std::string& source, const std::string& target) {
    std::error_code error;
    if (!fs::exists(source, error)) { // through a link: one that leads nowhere is not worth a copy
        return false;
    }
    switch (fs::symlink_status(source, error).type()) {
    case fs::file_type::regular:
        return copyFile(source, target);
    case fs::file_type::symlink:
        return copyLink(source, target);
    case fs::file_type::directory:
        return copyDirectory(source, target);
    default:
        return false;
    }
}

} // namespace morquill::system
